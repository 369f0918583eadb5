#include "apps/host/ServerWords.h"

#include <charconv>

namespace Tarvane
{
namespace
{

bool Calls(const SeenCommand& command, const char* szFunction)
{
    return command.strScript.find(szFunction) != std::string::npos;
}

// Seconds; empty when the server did not tell them.
std::optional<double> OffsetIn(const SeenCommand& command)
{
    double dSeconds = 0.0;
    const char* const pEnd = command.strResult.data() + command.strResult.size();
    const bool fTold = command.nStatus == 0 && command.fHasResult && command.strError.empty() &&
                       std::from_chars(command.strResult.data(), pEnd, dSeconds).ec == std::errc();
    return fTold ? std::optional(dSeconds) : std::nullopt;
}

} // namespace

ServerWords WordsAbout(const CCaptureReport& report, const std::vector<SeenCommand>& commands)
{
    ServerWords words;
    const std::string strQuoted = "\"" + report.dub.string() + "\"";
    std::optional<double> told; // last, before this capture or for it
    bool fTold = true;          // when it was asked last
    for (const SeenCommand& command : commands)
    {
        if (Calls(command, "GetLinkSMPTEOffset("))
        {
            const std::optional<double> offset = OffsetIn(command);
            fTold = offset.has_value();
            if (fTold)
                told = offset;
        }
        if (report.dub.empty() || !Calls(command, "AddAudioRegion(") ||
            !Calls(command, strQuoted.c_str()))
            continue;
        words = {};
        if (command.IsRefused())
            words.strRefusal = command.strError;
        words.fWithoutOffset = !fTold && command.nStatus == 0 && command.fHasResult;
        if (words.fWithoutOffset && told)
            words.placeMissed = *told * report.dSampleRate + report.times.dPosition;
    }
    return words;
}

} // namespace Tarvane
