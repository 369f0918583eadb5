// What the link makes of a server's reply, for each of its commands. An input is
//
//   operation       1 byte; 0x80: 'Rslt' holds its bytes eight times over
//   size of 'Errr'  1 byte; 0xFF: there is none
//   'Errr', 'Rslt'  the rest
#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "fuzz/Require.h"
#include "tests/support/ScriptedAppleEvents.h"
#include "utils/FileIO/FileName.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using TarvaneTests::ScriptedAppleEvents;
using Bytes = ScriptedAppleEvents::Bytes;

namespace
{

constexpr std::size_t kLongestItem = 999;

// The lines of a result, character by character.
std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (const char c : text)
    {
        const bool fEnd = c == '\n' || c == '\r';
        if (!lines.back().empty() && (fEnd || lines.back().size() == kLongestItem))
            lines.emplace_back();
        if (!fEnd)
            lines.back() += c;
    }
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

bool IsCountRight(const std::vector<std::string>& lines)
{
    return lines.empty() ||
           std::strtol(lines[0].c_str(), nullptr, 10) == static_cast<long>(lines.size()) - 1;
}

// The text with a count that is right: a wrong one ends the process, as it must.
std::string WithRightCount(const std::string& text)
{
    const std::vector<std::string> lines = LinesOf(text);
    return IsCountRight(lines) ? text : std::to_string(lines.size()) + "\n" + text;
}

std::vector<std::string> ItemsOf(const std::string& text)
{
    const std::vector<std::string> lines = LinesOf(text);
    return lines.empty() ? lines : std::vector<std::string>(lines.begin() + 1, lines.end());
}

// What a command prints when the reply is this one; empty when it fails.
std::string TextOf(const ScriptedAppleEvents::Reply& reply)
{
    ScriptedAppleEvents events;
    events.Play(reply);
    CTarvaneScript script;
    CCommandResult result;
    const int nStatus = script.SendCommand("print(1)", result.Receive(), -1);
    Require((nStatus == 0) == (result.Text() != nullptr));
    return result.Text() == nullptr ? std::string() : std::string(result.Text());
}

void SplitText(const std::string& text)
{
    std::vector<std::string> items;
    CTarvaneScript().SplitResult(text.c_str(), &items);
    Require(items == ItemsOf(text));
}

void List(CTarvaneScript& script, const std::string& text)
{
    const std::vector<std::string> items = ItemsOf(text);
    std::vector<std::string> tracks;
    Require(script.ListTracks(false, &tracks) == (items.size() >= 2));
    Require(tracks.size() == (items.size() >= 2 ? items.size() - 1 : 0));
    Require(std::equal(tracks.begin(), tracks.end(), items.end() - tracks.size()));
    Require(!tracks.empty() || script.m_strLastError == "No Tarvane session is selected");
}

void Export(CTarvaneScript& script, const std::string& text)
{
    CFileName file;
    Require(script.ExportSelectedRegion(false, 48000, &file) == (ItemsOf(text).size() == 2));
}

void Render(CTarvaneScript& script, const std::string& text)
{
    long long nStart = 0, nEnd = 0;
    Require(script.RenderSelectedRegion(false, 48000, &nStart, &nEnd) ==
            (ItemsOf(text).size() == 4));
}

// A command whose script prints a count.
void RunCounted(int nOperation, const ScriptedAppleEvents::Reply& reply)
{
    const std::string text = WithRightCount(TextOf(reply));
    ScriptedAppleEvents events;
    events.Play({noErr, ScriptedAppleEvents::TextBytes(text), reply.m_error});
    CTarvaneScript script;
    if (nOperation == 0)
        List(script, text);
    else if (nOperation == 1)
        Export(script, text);
    else
        Render(script, text);
    Require(events.LiveDescriptors() == 0);
}

// A command whose script prints one value.
void RunPlain(int nOperation, const ScriptedAppleEvents::Reply& reply)
{
    const bool fOne = std::strtol(TextOf(reply).c_str(), nullptr, 10) == 1;
    ScriptedAppleEvents events;
    events.Play(reply);
    CTarvaneScript script;
    if (nOperation == 3)
    {
        const std::string path = "/takes/a.wav";
        CFileName file(&path);
        Require(script.CheckDuplicateRegion(false, 0, &file, 0, 0, 1) == fOne);
        Require(script.m_fUserError == fOne);
    }
    else if (nOperation == 4)
        script.GetLinkSMPTEOffset(false);
    else
        Require((script.GetUpdateCount() == 1) == fOne);
    Require(events.LiveDescriptors() == 0);
}

Bytes EightTimes(const Bytes& bytes)
{
    Bytes all;
    for (int n = 0; n < 8; ++n)
        all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    if (nSize < 2)
        return 0;
    const std::uint8_t* const pResult = pBytes + 2 + std::min<std::size_t>(pBytes[1], nSize - 2);
    const bool fError = pBytes[1] != 0xFF;
    const std::uint8_t* const pFirst = fError ? pResult : pBytes + 2;
    Bytes result(pFirst, pBytes + nSize);
    if ((pBytes[0] & 0x80) != 0)
        result = EightTimes(result);
    ScriptedAppleEvents::Reply reply{noErr, result, {}};
    if (fError)
        reply.m_error = Bytes(pBytes + 2, pResult);

    const int nOperation = (pBytes[0] & 0x7F) % 7;
    if (nOperation < 3)
        RunCounted(nOperation, reply);
    else if (nOperation < 6)
        RunPlain(nOperation, reply);
    else
        SplitText(WithRightCount(std::string(result.begin(), result.end()).c_str()));
    return 0;
}
