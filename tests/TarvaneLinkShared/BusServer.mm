// A server with the signature 'TkNe' that runs no scripts: it recognises a few and answers the rest
// with their own text.

#include "tests/TarvaneLinkShared/BusServer.h"
#include "tests/support/Utf16.h"

#include <Carbon/Carbon.h>
#include <TarvanePlatform/Application.h>

#import <Foundation/Foundation.h>

#include <cstdio>
#include <string>

#include <unistd.h>

using namespace BusServer;
using namespace TarvaneTests;

namespace
{
std::string ScriptIn(const AppleEvent* pEvent)
{
    Size nBytes = 0;
    AESizeOfParam(pEvent, keyDirectObject, nullptr, &nBytes);
    std::u16string script(nBytes / sizeof(char16_t), u'\0');
    AEGetParamPtr(pEvent, keyDirectObject, typeUnicodeText, nullptr, script.data(), nBytes,
                  nullptr);
    return Utf8FromUtf16(script);
}

OSErr PutText(AppleEvent* pReply, AEKeyword key, const std::string& text)
{
    const std::u16string units = Utf16FromUtf8(text);
    return AEPutParamPtr(pReply, key, typeUnicodeText, units.data(),
                         units.size() * sizeof(char16_t));
}

OSErr HandleCommand(const AppleEvent* pEvent, AppleEvent* pReply, void*)
{
    const std::string script = ScriptIn(pEvent);
    if (script == szError)
    {
        PutText(pReply, 'Errr', szErrorText);
        return PutText(pReply, 'Rslt', "");
    }
    if (script == szSilent)
        return noErr;
    if (script == szRefuse)
        return kRefusal;
    if (script == szEnd)
        _exit(0);
    if (script == szSlow)
        usleep(500000);
    if (script.find("GetTrackName") != std::string::npos)
        return PutText(pReply, 'Rslt', "3\n1\nV\xC3\xB6x\nMic \xF0\x9F\x8E\x99\n");
    if (script.find("CheckForDuplicateRegion") != std::string::npos)
        return PutText(pReply, 'Rslt', "1\n");
    if (script.find("GetLinkSMPTEOffset") != std::string::npos)
        return PutText(pReply, 'Rslt', "-1.5\n");
    return PutText(pReply, 'Rslt', script);
}
} // namespace

int main()
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TarvaneSetApplicationSignature('TkNe');
    const OSErr status =
        AEInstallEventHandler('TKNE', 'LCmd', NewAEEventHandlerUPP(HandleCommand), nullptr, false);
    std::puts(status == noErr ? szReady : "the handler could not be installed");
    std::fflush(stdout);
    while (status == noErr)
    {
        NSAutoreleasePool* passPool = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantFuture]];
        [passPool drain];
    }
    [pool drain];
    return 1;
}
