// Sound files and models for tests of editors.
#pragma once

#include "apps/editor/EditorModel.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace TarvaneTest
{

inline std::string TextOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteText(const std::filesystem::path& path, const std::string& strText)
{
    std::ofstream(path, std::ios::binary) << strText;
}

class EditorFixture : public testing::Test
{
protected:
    /// Noise of 16 bits.
    std::string Sound(const std::string& strName, std::size_t nFrames, int nChannels = 1,
                      int nRate = 48000, unsigned nSeed = 1)
    {
        return MakeSound(folder / strName,
                         Noise(nFrames * static_cast<std::size_t>(nChannels), nSeed), nChannels,
                         nRate, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    }

    /// The whole file's first nLength frames.
    Tarvane::Editor::Region RegionOf(const std::string& strFile, std::int64_t nPosition,
                                     std::int64_t nLength)
    {
        Tarvane::Editor::Region region;
        region.nId = ++nLastId;
        region.strFile = strFile;
        region.strName = std::filesystem::path(strFile).stem().string();
        region.nPosition = nPosition;
        region.nLength = nLength;
        region.nRate = 48000;
        return region;
    }

    CTemporaryFolder folder;
    std::int64_t nLastId = 0;
};

} // namespace TarvaneTest
