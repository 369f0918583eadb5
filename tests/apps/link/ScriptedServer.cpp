// A server with the signature 'TkNe' that runs no scripts: it answers by rules.

#include "tests/apps/link/ScriptedServer.h"
#include "tests/support/ScriptReceiver.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

using namespace ScriptedServer;
using namespace TarvaneTests;

namespace
{

using Rules = std::vector<std::pair<std::string, std::string>>;

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

Rules RulesFrom(const std::vector<std::string>& arguments)
{
    Rules rules;
    for (const std::string& rule : arguments)
    {
        const std::size_t nArrow = rule.find("=>");
        rules.emplace_back(rule.substr(0, nArrow), rule.substr(nArrow + 2));
    }
    return rules;
}

} // namespace

int main(int argc, char** argv)
{
    const Rules rules = RulesFrom({argv + 1, argv + argc});
    return ReceiveScripts(szReady,
                          [&rules](const std::string& script, AppleEvent* pReply)
                          {
                              for (const auto& [part, answer] : rules)
                              {
                                  if (script.find(part) != std::string::npos)
                                      return Give(answer, pReply);
                              }
                              return PutText(pReply, 'Rslt', "");
                          });
}
