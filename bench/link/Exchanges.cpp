#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "bench/link/Bench.h"
#include "bench/support/Measure.h"
#include "tests/support/Utf16.h"

#include <cstring>
#include <stdexcept>

namespace Bench
{
namespace
{

constexpr int kCommands = 8; // a repetition

void Command()
{
    static CTarvaneScript script;
    script.GetUpdateCount();
    if (!script.m_strLastError.empty())
        throw std::runtime_error(script.m_strLastError);
}

// Unmeasured: the server would find the capture again, and call the next one a duplicate.
void ClearTrack()
{
    CTarvaneScript().ClearTrack(false, 0);
}

std::function<void()> Times(int nTimes, std::function<void()> body)
{
    return [nTimes, body]
    {
        for (int n = 0; n < nTimes; ++n)
            body();
    };
}

// The least that reading lines can be.
std::vector<std::string> Lines(const char* pLine)
{
    std::vector<std::string> lines;
    while (const char* pEnd = std::strchr(pLine, '\n'))
    {
        lines.emplace_back(pLine, pEnd);
        pLine = pEnd + 1;
    }
    return lines;
}

std::string Listing(int nTracks)
{
    std::string strList = std::to_string(nTracks + 1) + "\n1\n";
    for (int n = 1; n <= nTracks; ++n)
        strList += "Track number " + std::to_string(n) + "\n";
    return strList;
}

void RegisterSplittingOf(int nTracks)
{
    const std::string text = Listing(nTracks);
    const std::string strOf = ", " + std::to_string(nTracks) + " tracks";
    const int nTimes = 20000 / nTracks;
    Register("SplitResult" + strOf,
             {{},
              Times(nTimes,
                    [text]
                    {
                        static CTarvaneScript script;
                        std::vector<std::string> items;
                        script.SplitResult(text.c_str(), &items);
                    }),
              {}},
             nTimes);
    Register("scan and copy" + strOf, {{}, Times(nTimes, [text] { Lines(text.c_str()); }), {}},
             nTimes);
    Expect("SplitResult" + strOf, "scan and copy" + strOf, 1.5);
}

} // namespace

std::string BytesOf(const std::string& script)
{
    const std::u16string units = TarvaneTests::Utf16FromUtf8(script);
    return std::string(reinterpret_cast<const char*>(units.data()),
                       units.size() * sizeof(char16_t));
}

Scripts RecordScripts()
{
    Deliver(); // Opens the view, which speaks to the server too.
    CTarvaneScript script;
    CCommandResult ignored, seen;
    script.SendCommand("tracks 3", ignored.Receive(), -1);
    Command();
    Deliver();
    if (script.SendCommand("scripts", seen.Receive(), -1) != 0)
        throw std::runtime_error("the receiver does not tell what it has had");
    std::vector<std::string> sent;
    const char* pScript = seen.Text();
    while (const char* pEnd = std::strchr(pScript, '\x1F'))
    {
        sent.push_back(BytesOf(std::string(pScript, pEnd)));
        pScript = pEnd + 1;
    }
    if (sent.size() != 4)
        throw std::runtime_error("a command and a delivery are four scripts, and there were " +
                                 std::to_string(sent.size()));
    return {sent[0], {sent[1], sent[2], sent[3]}};
}

void RegisterRawTrips(const std::string& strWhere, const Scripts& scripts, CRawCaller& caller,
                      const char* szDestination, int nDeliveries)
{
    const auto fnRawDelivery = [&, szDestination]
    {
        for (const std::string& script : scripts.delivery)
            caller.Trip(szDestination, script);
    };
    Register("raw trip" + strWhere,
             {{},
              Times(kCommands, [&, szDestination] { caller.Trip(szDestination, scripts.command); }),
              {}},
             kCommands);
    Register("three raw trips" + strWhere, {{}, Times(nDeliveries, fnRawDelivery), ClearTrack},
             nDeliveries);
}

void RegisterExchanges(const std::string& strWhere, const Scripts& scripts, CRawCaller& caller,
                       int nDeliveries)
{
    Register("command" + strWhere, {{}, Times(kCommands, Command), {}}, kCommands);
    Register("delivery" + strWhere, {{}, Times(nDeliveries, Deliver), ClearTrack}, nDeliveries);
    RegisterRawTrips(strWhere, scripts, caller, kServerName, nDeliveries);
    Expect("command" + strWhere, "raw trip" + strWhere, 1.15);
    Expect("delivery" + strWhere, "three raw trips" + strWhere, 1.2);
}

void RegisterSplitting()
{
    for (const int nTracks : {10, 1000})
        RegisterSplittingOf(nTracks);
}

} // namespace Bench
