// A library that fails before any property can: TARVANE_BROKEN says how. Without it an instance
// opens, takes every call and does nothing. It cannot play.
#include "apps/support/PlugInEntry.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <unistd.h>

namespace
{

OSStatus Succeed(void*, ...)
{
    return noErr;
}

OSStatus Open(void*, AudioComponentInstance)
{
    return noErr;
}

OSStatus Close(void*)
{
    return noErr;
}

OSStatus FailToOpen(void*, AudioComponentInstance)
{
    return kAudioUnitErr_FailedInitialization;
}

AudioComponentMethod Serve(SInt16)
{
    return &Succeed;
}

AudioComponentMethod ServeNothing(SInt16)
{
    return nullptr;
}

} // namespace

AudioComponentPlugInInterface* TarvaneLinkSignalSideFactory(const AudioComponentDescription*)
{
    static AudioComponentPlugInInterface whole{Open, Close, Serve, nullptr};
    static AudioComponentPlugInInterface closed{FailToOpen, Close, Serve, nullptr};
    static AudioComponentPlugInInterface deaf{Open, Close, ServeNothing, nullptr};
    const char* szBroken = std::getenv("TARVANE_BROKEN");
    const std::string strBroken = szBroken == nullptr ? "" : szBroken;
    if (strBroken == "null")
        return nullptr;
    if (strBroken == "crash")
        std::abort();
    if (strBroken == "hang")
        for (;;)
            pause();
    if (strBroken == "exit")
        std::_Exit(7);
    if (strBroken == "talk")
        std::cout << "{\"outcome\":\"broken\"}" << std::endl;
    return strBroken == "closed" ? &closed : strBroken == "deaf" ? &deaf : &whole;
}
