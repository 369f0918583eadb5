#include "tests/support/ScriptReceiver.h"

#include "tests/support/Utf16.h"

#include <TarvanePlatform/Application.h>

#import <Foundation/Foundation.h>

#include <cstdio>

namespace TarvaneTests
{
namespace
{

OSErr HandleCommand(const AppleEvent* pEvent, AppleEvent* pReply, void* pAnswer)
{
    return (*static_cast<ScriptAnswer*>(pAnswer))(Utf8FromUtf16(ScriptIn(pEvent)), pReply);
}

} // namespace

std::u16string ScriptIn(const AppleEvent* pEvent)
{
    Size nBytes = 0;
    AESizeOfParam(pEvent, keyDirectObject, nullptr, &nBytes);
    std::u16string script(nBytes / sizeof(char16_t), u'\0');
    AEGetParamPtr(pEvent, keyDirectObject, typeUnicodeText, nullptr, script.data(), nBytes,
                  nullptr);
    return script;
}

OSErr PutText(AppleEvent* pReply, AEKeyword key, const std::string& text)
{
    const std::u16string units = Utf16FromUtf8(text);
    return AEPutParamPtr(pReply, key, typeUnicodeText, units.data(),
                         units.size() * sizeof(char16_t));
}

int ReceiveScripts(const char* szReady, ScriptAnswer answer)
{
    return ReceiveCommands(szReady, HandleCommand, &answer);
}

int ReceiveCommands(const char* szReady, AEEventHandlerProcPtr handler, void* pRefcon)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TarvaneSetApplicationSignature('TkNe');
    const OSErr status =
        AEInstallEventHandler('TKNE', 'LCmd', NewAEEventHandlerUPP(handler), pRefcon, false);
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

} // namespace TarvaneTests
