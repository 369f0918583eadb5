#include "apps/palette/PaletteFile.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/palette/PaletteFixture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <csignal>
#include <limits>
#include <sys/resource.h>

namespace fs = std::filesystem;
using Tarvane::CUsageError;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

namespace
{

class PaletteFile : public TarvaneTest::PaletteTest
{
  protected:
    // The palette as text, to compare it by.
    static std::string Palette()
    {
        CParameterBlock block;
        gAppColours.Save(&block);
        unsigned long nSize = 0;
        const std::unique_ptr<unsigned char[]> pBytes(block.CreateBlock(&nSize));
        return std::string(reinterpret_cast<const char*>(pBytes.get()), nSize);
    }

    static void ExpectRefused(const fs::path& path, const std::string& strWords)
    {
        const std::string strBefore = Palette();
        EXPECT_THAT([&] { Tarvane::LoadPalette(path); },
                    ThrowsMessage<CUsageError>(HasSubstr(strWords)));
        EXPECT_TRUE(Palette() == strBefore);
    }
};

// No file of this process grows beyond these bytes while it lives, as on a full disk.
class FullDisk
{
  public:
    explicit FullDisk(rlim_t nBytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {nBytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

  private:
    void (*m_handler)(int);
    rlimit m_before;
};

constexpr CComponentCode kMine(3, 4);

} // namespace

TEST_F(PaletteFile, WhatWasStoredComesBack)
{
    gAppColours.Add(MakeGradient(kMine, "Mine", 3));
    const std::string strStored = Palette();
    Tarvane::StorePalette(m_folder / "mine.session");
    AppCreateDefaultColoursDesigner();
    EXPECT_FALSE(Palette() == strStored);
    Tarvane::LoadPalette(m_folder / "mine.session");
    EXPECT_TRUE(Palette() == strStored);
}

TEST_F(PaletteFile, EntriesOfTheFileReplaceThoseOfTheirCodesAlone)
{
    const fs::path file = WriteEntries({MakeFlat(ccLabelText, "Red label", 1)});
    Tarvane::LoadPalette(file);
    EXPECT_EQ(gAppColours.Find(ccLabelText)->m_strName, "Red label");
    EXPECT_EQ(gAppColours.m_Map.size(), 12u);
    EXPECT_EQ(gAppColours.Find(ccControlText)->m_strName, "Control text");
}

TEST_F(PaletteFile, WhatIsNoSessionIsRefused)
{
    ExpectRefused(m_folder / "nowhere", "there is no file");
    ExpectRefused(m_folder.Path(), "there is no file");
    const fs::path file = m_folder / "text";
    std::ofstream(file) << "no session, though long enough to be the header of one";
    ExpectRefused(file, "is no whole session");
    Tarvane::StorePalette(file);
    fs::resize_file(file, fs::file_size(file) / 2);
    ExpectRefused(file, "is no whole session");
}

TEST_F(PaletteFile, SessionsWithoutAPaletteAreRefused)
{
    std::ofstream(m_folder / "empty");
    ExpectRefused(m_folder / "empty", "holds no palette");
    CParameterBlock other;
    ExpectRefused(WriteBlock("Other", other), "holds no palette");
}

TEST_F(PaletteFile, AFlawedEntryIsNamedAlsoWhenTheLastIsGood)
{
    const fs::path file = WriteEntries(
        {MakeFlat(kMine, "Good", 1), MakeFlat(ccNull, "Flawed", 1), MakeFlat(ccLabelText, "Z", 1)},
        [](CComponentColour& entry, CParameterBlock& block)
        {
            if (entry.m_strName == "Flawed")
            {
                CParameterBlock poor;
                poor.AddParameter("Name", "Flawed");
                block.CopyParameters(&poor);
            }
        });
    ExpectRefused(file, "entry 2 (Flawed)");
}

TEST_F(PaletteFile, AnUnknownKindOfEntryIsRefused)
{
    const fs::path file = WriteEntries({MakeFlat(kMine, "Strange", 1)},
                                       [](CComponentColour&, CParameterBlock& block)
                                       {
                                           CParameterBlock strange;
                                           strange.AddParameter("Type", 3);
                                           strange.AddParameter("Name", "Strange");
                                           block.CopyParameters(&strange);
                                       });
    ExpectRefused(file, "entry 1 (Strange)");
}

TEST_F(PaletteFile, AStopThatGetsLostIsRefused)
{
    const auto addStop = [](CComponentColour&, CParameterBlock& block)
    {
        CParameterBlock stop;
        stop.AddParameter("Position", 0.5f);
        block.AddParameter("GradColor", &stop); // without its colour
        CGradComponent good(0.9, 0, 0, 0, 1, nullptr, true);
        CParameterBlock last;
        good.Save(&last);
        block.AddParameter("GradColor", &last);
    };
    ExpectRefused(WriteEntries({MakeGradient(kMine, "Lost", 1)}, addStop), "entry 1 (Lost)");

    const auto addSame = [](CComponentColour&, CParameterBlock& block)
    {
        CGradComponent same(0.1, 0, 0, 0, 1, nullptr, true);
        CParameterBlock stop;
        same.Save(&stop);
        block.AddParameter("GradColor", &stop);
    };
    ExpectRefused(WriteEntries({MakeGradient(kMine, "Twice", 2)}, addSame), "entry 1 (Twice)");
}

TEST_F(PaletteFile, NumbersThatAreNoneAreRefused)
{
    const double dNone = std::numeric_limits<double>::quiet_NaN();
    ExpectRefused(WriteEntries({MakeFlat(kMine, "Flat", dNone)}), "entry 1 (Flat)");
    CGradientFill* pColour = MakeGradient(kMine, "Colour", 1);
    (*pColour->m_Stops.begin())->m_dBlue = HUGE_VAL;
    ExpectRefused(WriteEntries({pColour}), "entry 1 (Colour)");
    CGradientFill* pPlace = MakeGradient(kMine, "Place", 1);
    (*pPlace->m_Stops.begin())->m_fPosition = float(dNone);
    ExpectRefused(WriteEntries({pPlace}), "entry 1 (Place)");
}

TEST_F(PaletteFile, StoringReplacesTheFileAndLeavesNothingElse)
{
    std::ofstream(m_folder / "mine.session") << std::string(100000, 'x');
    Tarvane::StorePalette(m_folder / "mine.session");
    EXPECT_THAT(m_folder.Files(), ElementsAre("mine.session"));
    EXPECT_LT(fs::file_size(m_folder / "mine.session"), 10000u);
    Tarvane::LoadPalette(m_folder / "mine.session");
}

TEST_F(PaletteFile, StoringThroughALinkKeepsTheLink)
{
    fs::create_directory(m_folder / "real");
    std::ofstream(m_folder / "real" / "mine.session");
    fs::create_symlink("real/mine.session", m_folder / "link");
    Tarvane::StorePalette(m_folder / "link");
    EXPECT_TRUE(fs::is_symlink(m_folder / "link"));
    Tarvane::LoadPalette(m_folder / "real" / "mine.session");
    EXPECT_THAT(m_folder.Files(), ElementsAre("link", "real/mine.session"));
}

TEST_F(PaletteFile, WhereNoFileCanBeWrittenStoringSaysSo)
{
    for (const fs::path& path : {m_folder.Path(), m_folder / "nowhere" / "mine.session"})
    {
        EXPECT_THAT([&] { Tarvane::StorePalette(path); },
                    ThrowsMessage<std::runtime_error>(HasSubstr("cannot write the palette")));
    }
    EXPECT_THAT(m_folder.Files(), ElementsAre());
}

TEST_F(PaletteFile, OnADiskThatIsFullAtAnyByteTheOldFileStays)
{
    const fs::path file = m_folder / "mine.session";
    Tarvane::StorePalette(file);
    const auto nWhole = fs::file_size(file);
    std::ofstream(file) << "old";
    for (std::uintmax_t nBytes = 0; nBytes < nWhole; nBytes += nBytes < 120 ? 1 : 61)
    {
        const FullDisk disk(nBytes);
        EXPECT_THROW(Tarvane::StorePalette(file), std::runtime_error) << nBytes;
    }
    EXPECT_EQ(TarvaneTest::FileText(file), "old");
    EXPECT_THAT(m_folder.Files(), ElementsAre("mine.session"));
}

TEST_F(PaletteFile, OnAFullDiskTheOldFileStays)
{
    const fs::path file = m_folder / "mine.session";
    std::ofstream(file) << "old";
    {
        const FullDisk disk(1000);
        EXPECT_THAT([&] { Tarvane::StorePalette(file); },
                    ThrowsMessage<std::runtime_error>(HasSubstr("the disk does not take it")));
    }
    EXPECT_EQ(TarvaneTest::FileText(file), "old");
    EXPECT_THAT(m_folder.Files(), ElementsAre("mine.session"));
}
