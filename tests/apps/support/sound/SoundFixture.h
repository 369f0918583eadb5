// Sound files with samples that a test knows.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <vector>

namespace TarvaneTest
{

/// Whole-number samples, no two neighbours alike, from -2^31 to 2^31 - 1 in steps that reach every
/// bit. The lowest bits that a form does not keep are cleared by its width.
inline std::vector<int> KnownSamples(size_t nCount)
{
    std::vector<int> samples(nCount);
    unsigned nValue = 0x80000000U;
    for (int& nSample : samples)
    {
        nSample = static_cast<int>(nValue);
        nValue = nValue * 1664525U + 1013904223U;
    }
    return samples;
}

inline SF_INFO WriteSound(const std::filesystem::path& path, int nFormat, size_t nFrames,
                          int nChannels = 1, int nRate = 48000)
{
    SF_INFO info{};
    info.samplerate = nRate;
    info.channels = nChannels;
    info.format = nFormat;
    SNDFILE* pFile = sf_open(path.c_str(), SFM_WRITE, &info);
    EXPECT_NE(pFile, nullptr) << path << ": " << sf_strerror(nullptr);
    if (pFile != nullptr)
    {
        const std::vector<int> samples = KnownSamples(nFrames * static_cast<size_t>(nChannels));
        EXPECT_EQ(sf_writef_int(pFile, samples.data(), static_cast<sf_count_t>(nFrames)),
                  static_cast<sf_count_t>(nFrames));
        sf_close(pFile);
    }
    return info;
}

struct Sound
{
    SF_INFO info{};
    std::vector<double> samples;
};

inline Sound ReadSound(const std::filesystem::path& path)
{
    Sound sound;
    SNDFILE* pFile = sf_open(path.c_str(), SFM_READ, &sound.info);
    EXPECT_NE(pFile, nullptr) << path << ": " << sf_strerror(nullptr);
    if (pFile != nullptr)
    {
        sound.samples.resize(static_cast<size_t>(sound.info.frames * sound.info.channels));
        EXPECT_EQ(sf_readf_double(pFile, sound.samples.data(), sound.info.frames),
                  sound.info.frames);
        sf_close(pFile);
    }
    return sound;
}

} // namespace TarvaneTest
