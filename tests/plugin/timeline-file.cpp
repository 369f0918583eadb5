// Files of the timeline's audio:
//
//   timeline-file write FILE RATE CHANNELS FRAMES   the audio from the timeline's beginning on
//   timeline-file check FILE...                     how many samples a file lies beside the
//   position
//                                                   that it tells, one line a file
//
// A file lies where most of its middle does; hosts fade in and out.
#include "tests/plugin/TimelineAudio.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <sndfile.h>
#include <string>
#include <vector>

namespace
{

constexpr std::int64_t kFarthest = 20000; // samples, either way

int Write(const char* szFile, int nRate, int nChannels, std::int64_t nFrames)
{
    SF_INFO info{};
    info.samplerate = nRate;
    info.channels = nChannels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    SNDFILE* pFile = sf_open(szFile, SFM_WRITE, &info);
    if (pFile == nullptr)
        return 1;
    // Whole numbers: floats are written a little smaller than they are.
    std::vector<int> frame(static_cast<std::size_t>(nChannels));
    for (std::int64_t n = 0; n < nFrames; ++n)
    {
        for (std::size_t nChannel = 0; nChannel < frame.size(); ++nChannel)
            frame[nChannel] = TarvaneTest::TimelineSample(n, static_cast<unsigned>(nChannel)) * 256;
        sf_writef_int(pFile, frame.data(), 1);
    }
    return sf_close(pFile);
}

// Of the middle eighth of the file, whether every sample is that of the timeline there.
bool LiesAt(const std::vector<float>& samples, int nChannels, std::int64_t nPosition)
{
    const auto nFrames = static_cast<std::int64_t>(samples.size()) / nChannels;
    for (std::int64_t n = nFrames / 2; n < nFrames / 2 + nFrames / 8; ++n)
    {
        for (int nChannel = 0; nChannel < nChannels; ++nChannel)
        {
            if (samples[static_cast<std::size_t>(n * nChannels + nChannel)] !=
                TarvaneTest::TimelineFloat(nPosition + n, static_cast<unsigned>(nChannel)))
                return false;
        }
    }
    return nFrames > 0;
}

std::optional<std::int64_t> ErrorOf(const char* szFile)
{
    SF_INFO info{};
    SF_BROADCAST_INFO broadcast{};
    SNDFILE* pFile = sf_open(szFile, SFM_READ, &info);
    if (pFile == nullptr)
        return std::nullopt;
    sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast);
    std::vector<float> samples(static_cast<std::size_t>(info.frames * info.channels));
    sf_readf_float(pFile, samples.data(), info.frames);
    sf_close(pFile);
    const std::int64_t nPosition =
        broadcast.time_reference_low | std::int64_t{broadcast.time_reference_high} << 32;
    for (std::int64_t nError = 0; nError <= kFarthest; ++nError)
    {
        if (LiesAt(samples, info.channels, nPosition + nError))
            return nError;
        if (LiesAt(samples, info.channels, nPosition - nError))
            return -nError;
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 6 && std::strcmp(argv[1], "write") == 0)
        return Write(argv[2], std::atoi(argv[3]), std::atoi(argv[4]), std::atoll(argv[5]));
    if (argc < 3 || std::strcmp(argv[1], "check") != 0)
        return 2;
    for (int n = 2; n < argc; ++n)
    {
        const auto nError = ErrorOf(argv[n]);
        std::cout << (nError ? std::to_string(*nError) : "not found") << "\n";
    }
    return 0;
}
