// A server with the signature 'TkNe' that runs no scripts: it answers by rules.

#include "tests/apps/link/ScriptedServer.h"
#include "tests/support/Utf16.h"

#include <Carbon/Carbon.h>
#include <TarvanePlatform/Application.h>

#import <Foundation/Foundation.h>

#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

using namespace ScriptedServer;
using namespace TarvaneTests;

namespace
{

std::vector<std::pair<std::string, std::string>> g_rules;

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

std::string ListOf(int nTracks)
{
    std::string list = std::to_string(nTracks + 1) + "\n1\n";
    for (int nTrack = 0; nTrack < nTracks; nTrack++)
        list += "Track " + std::to_string(nTrack) + "\n";
    return list;
}

// What follows the word, when the answer begins with it.
std::optional<std::string> After(const char* szWord, const std::string& answer)
{
    const std::string word = szWord;
    if (answer.compare(0, word.size(), word) != 0)
        return std::nullopt;
    return answer.substr(word.size());
}

OSErr Give(const std::string& answer, AppleEvent* pReply)
{
    if (const auto text = After(szError, answer))
    {
        PutText(pReply, 'Errr', *text);
        return PutText(pReply, 'Rslt', "");
    }
    if (const auto number = After(szStatus, answer))
        return OSErr(std::stoi(*number));
    if (const auto number = After(szTracks, answer))
        return PutText(pReply, 'Rslt', ListOf(std::stoi(*number)));
    if (const auto number = After(szBytes, answer))
        return PutText(pReply, 'Rslt', std::string(std::stoul(*number), 'b') + "\n");
    if (const auto text = After(szNumbers, answer))
        return AEPutParamPtr(pReply, 'Rslt', typeChar, text->data(), Size(text->size()));
    if (answer == szSilent)
        return noErr;
    if (answer == szDie)
        _exit(0);
    return PutText(pReply, 'Rslt', answer);
}

OSErr HandleCommand(const AppleEvent* pEvent, AppleEvent* pReply, void*)
{
    const std::string script = ScriptIn(pEvent);
    for (const auto& [part, answer] : g_rules)
    {
        if (script.find(part) != std::string::npos)
            return Give(answer, pReply);
    }
    return PutText(pReply, 'Rslt', "");
}

} // namespace

int main(int argc, char** argv)
{
    for (const std::string& rule : std::vector<std::string>(argv + 1, argv + argc))
    {
        const std::size_t nArrow = rule.find("=>");
        g_rules.emplace_back(rule.substr(0, nArrow), rule.substr(nArrow + 2));
    }
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
