#include "apps/editor/SoundStretch.h"

#include "apps/editor/Editor.h"
#include "tests/apps/editor/EditorFixture.h"

#include <gmock/gmock.h>

using namespace Tarvane::Editor;
using namespace TarvaneTest;
using namespace testing;

namespace
{

class SoundStretch : public EditorFixture
{
protected:
    // More than one piece of it, in several forms.
    static constexpr std::size_t kFrames = 150000;

    std::string Of(int nForm)
    {
        return MakeSound(folder / "from.wav", Noise(kFrames * 3), 3, 48000, SF_FORMAT_WAV | nForm);
    }
};

} // namespace

TEST_F(SoundStretch, EverySampleIsThatOfTheFile)
{
    for (int nForm : {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_FLOAT})
    {
        Region region = RegionOf(Of(nForm), 0, 140000);
        region.nStart = 7000;
        region.channels = {0, 2};
        WriteStretch(region, folder / "to.wav");
        const std::vector<double> from = ReadSamples(region.strFile);
        const std::vector<double> to = ReadSamples(folder / "to.wav");
        ASSERT_EQ(to.size(), 140000U * 2);
        std::size_t nWrong = 0;
        for (std::size_t n = 0; n < 140000; n++)
            nWrong +=
                to[2 * n] != from[(n + 7000) * 3] || to[2 * n + 1] != from[(n + 7000) * 3 + 2];
        EXPECT_EQ(nWrong, 0U) << nForm;
    }
}

TEST_F(SoundStretch, AFileIsTakenWholeWithAllItsFramesAndChannelsOnly)
{
    Region region = RegionOf(Of(SF_FORMAT_PCM_16), 0, kFrames);
    const FileShape shape = ShapeOf(region);
    EXPECT_TRUE(IsWholeFile(region, shape));
    region.channels = {0, 1, 2};
    EXPECT_TRUE(IsWholeFile(region, shape));
    region.channels = {0, 1};
    EXPECT_FALSE(IsWholeFile(region, shape));
    region.channels.clear();
    region.nLength--;
    EXPECT_FALSE(IsWholeFile(region, shape));
    region.nStart = 1;
    EXPECT_FALSE(IsWholeFile(region, shape));
    WriteStretch(region, folder / "to.wav");
    EXPECT_EQ(ReadSamples(folder / "to.wav").size(), (kFrames - 1) * 3);
}

TEST_F(SoundStretch, WhereNothingCanBeWrittenIsAnError)
{
    const Region region = RegionOf(Of(SF_FORMAT_PCM_16), 0, kFrames);
    EXPECT_THROW(WriteStretch(region, folder / "none/to.wav"), CEditorError);
    EXPECT_THROW(WriteStretch(region, "/dev/full"), CEditorError);
}
