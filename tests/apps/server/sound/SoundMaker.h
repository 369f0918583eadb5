// Small sound files, sample by sample.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <string>
#include <vector>

namespace TarvaneTest
{

/// Samples in -1..1, below 1 in whole-number formats; channels side by side. What a format can hold
/// is written exactly.
inline std::string MakeSound(const std::filesystem::path& path, const std::vector<double>& samples,
                             int nChannels = 1, int nRate = 48000,
                             int nFormat = SF_FORMAT_WAV | SF_FORMAT_PCM_24)
{
    SF_INFO info{};
    info.samplerate = nRate;
    info.channels = nChannels;
    info.format = nFormat;
    SNDFILE* pFile = sf_open(path.c_str(), SFM_WRITE, &info);
    EXPECT_NE(pFile, nullptr) << path << ": " << sf_strerror(nullptr);
    if (pFile != nullptr)
    {
        const auto nFrames = static_cast<sf_count_t>(samples.size()) / nChannels;
        const int nSubtype = nFormat & SF_FORMAT_SUBMASK;
        if (nSubtype == SF_FORMAT_FLOAT || nSubtype == SF_FORMAT_DOUBLE)
        {
            EXPECT_EQ(sf_writef_double(pFile, samples.data(), nFrames), nFrames);
        }
        else
        {
            std::vector<int> numbers;
            for (double dSample : samples)
                numbers.push_back(static_cast<int>(dSample * 2147483648.0));
            EXPECT_EQ(sf_writef_int(pFile, numbers.data(), nFrames), nFrames);
        }
        sf_close(pFile);
    }
    return path.string();
}

/// Every sample of a file, exactly.
inline std::vector<double> ReadSamples(const std::filesystem::path& path)
{
    SF_INFO info{};
    SNDFILE* pFile = sf_open(path.c_str(), SFM_READ, &info);
    EXPECT_NE(pFile, nullptr) << path << ": " << sf_strerror(nullptr);
    std::vector<double> samples(static_cast<std::size_t>(info.frames * info.channels));
    if (pFile != nullptr)
    {
        EXPECT_EQ(sf_readf_double(pFile, samples.data(), info.frames), info.frames);
        sf_close(pFile);
    }
    return samples;
}

/// Samples of which no two stretches are alike, exact in 16 bits. Another seed makes other samples.
inline std::vector<double> Noise(std::size_t nSamples, unsigned nSeed = 1)
{
    std::vector<double> samples(nSamples);
    for (double& dSample : samples)
    {
        nSeed = nSeed * 1664525U + 1013904223U;
        dSample = (static_cast<int>(nSeed >> 16) - 32768) / 32768.0;
    }
    return samples;
}

} // namespace TarvaneTest
