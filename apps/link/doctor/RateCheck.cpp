// The host's rate and the server's.
#include "apps/link/doctor/ServerChecks.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/sound/SoundFile.h"

#include "TarvaneLinkShared/ScriptNumbers.h"

#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace Tarvane::Link
{

namespace
{

constexpr char szCheck[] = "rates";

std::optional<long> RateOfSound(const fs::path& path)
{
    try
    {
        return CSoundReader(path).Info().samplerate;
    }
    catch (const CUsageError&)
    {
        return std::nullopt;
    }
}

// Of the newest file that is a sound file.
std::optional<long> RateInFolder(const std::string& strFolder)
{
    std::multimap<fs::file_time_type, fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(strFolder, error), end; !error && entry != end;
         entry.increment(error))
    {
        std::error_code ignored;
        const auto time = entry->last_write_time(ignored);
        if (!ignored)
            files.emplace(time, entry->path());
    }
    for (auto file = files.rbegin(); file != files.rend(); ++file)
    {
        if (const auto rate = RateOfSound(file->second))
            return rate;
    }
    return std::nullopt;
}

std::optional<long> HostRate(const Options& options)
{
    if (options.rate)
        return options.rate;
    return options.strCaptureFolder.empty() ? std::nullopt : RateInFolder(options.strCaptureFolder);
}

} // namespace

Finding CheckRates(const CExaminer& examiner)
{
    const auto reply = examiner.AskDocument("GetSampleRate()");
    if (!reply.Answered())
        return NoReplyFinding(szCheck, reply);
    const long nServer = LongFromText(reply.strPrinted.c_str());
    if (nServer <= 0)
        return {szCheck, Verdict::Unknown, "the server does not tell the rate that it works at",
                "A server tells it by GetSampleRate, some only once a track has audio."};
    const std::optional<long> host = HostRate(examiner.GetOptions());
    if (!host)
        return {szCheck, Verdict::Unknown,
                "the server works at " + std::to_string(nServer) + "; the host's rate is not known",
                "Give it with --rate."};
    if (*host == nServer)
        return {szCheck, Verdict::Good,
                "host and server work at " + std::to_string(nServer) + " samples per second"};
    return {szCheck, Verdict::Warning,
            "the host works at " + std::to_string(*host) + ", the server at " +
                std::to_string(nServer) + " samples per second",
            "Set both to one rate: places are samples, and mean another time at another rate."};
}

} // namespace Tarvane::Link
