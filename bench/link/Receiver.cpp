// Answers the link's commands by the platform layer, at once and with the texts of a server: a
// script is looked through for the one word that tells what it asks for, and nothing is run.
// Two scripts speak to the receiver itself: "tracks N" has it list so many tracks, and "scripts"
// answers with those that it has had since then, a unit separator behind each.
#include "tests/support/ScriptReceiver.h"
#include "tests/support/Utf16.h"

#include <Carbon/Carbon.h>

#include <cstdlib>
#include <string>

namespace
{

std::u16string trackList;
std::u16string scriptsSeen;

void MakeTracks(long nTracks)
{
    std::string strList = std::to_string(nTracks + 1) + "\n1\n";
    for (long n = 1; n <= nTracks; ++n)
        strList += "Track " + std::to_string(n) + "\n";
    trackList = TarvaneTests::Utf16FromUtf8(strList);
    scriptsSeen.clear();
}

const std::u16string& AnswerTo(const std::u16string& script)
{
    static const std::u16string none, notDuplicate = u"0\n", offset = u"2\n", count = u"7\n";
    if (script.find(u"GetTrackCount") != script.npos)
        return trackList;
    if (script.find(u"CheckForDuplicateRegion") != script.npos)
        return notDuplicate;
    if (script.find(u"GetLinkSMPTEOffset") != script.npos)
        return offset;
    return script.find(u"Update") != script.npos ? count : none;
}

OSErr Put(AppleEvent* pReply, const std::u16string& text)
{
    return AEPutParamPtr(pReply, 'Rslt', typeUnicodeText, text.data(),
                         text.size() * sizeof(char16_t));
}

OSErr HandleCommand(const AppleEvent* pEvent, AppleEvent* pReply, void*)
{
    const std::u16string script = TarvaneTests::ScriptIn(pEvent);
    if (script.starts_with(u"tracks "))
        MakeTracks(std::strtol(TarvaneTests::Utf8FromUtf16(script).c_str() + 7, nullptr, 10));
    else if (script == u"scripts")
        return Put(pReply, scriptsSeen);
    else if (scriptsSeen.size() < 4096)
        scriptsSeen.append(script).push_back(u'\x1F');
    return Put(pReply, AnswerTo(script));
}

} // namespace

int main()
{
    MakeTracks(3);
    return TarvaneTests::ReceiveCommands("ready", HandleCommand, nullptr);
}
