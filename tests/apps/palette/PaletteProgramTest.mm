#include "apps/support/process/ChildProcess.h"
#include "tests/apps/palette/PaletteFixture.h"
#include "tests/apps/support/process/Ended.h"

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>

namespace fs = std::filesystem;
using Tarvane::CChildProcess;
using TarvaneTest::Ended;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

// No test waits for it when all is well.
constexpr std::chrono::minutes kLong{2};

class PaletteProgram : public TarvaneTest::PaletteTest
{
  protected:
    static std::vector<std::string> Program(std::vector<std::string> options)
    {
        options.insert(options.begin(), PALETTE_PROGRAM);
        return options;
    }

    static Ended Run(const std::vector<std::string>& options)
    {
        return TarvaneTest::RunToEnd(Program(options));
    }

    // How many pixels of the picture have each colour, as 0xRRGGBB.
    static std::map<unsigned, int> Colours(const fs::path& path)
    {
        NSData* data = [NSData dataWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]];
        NSBitmapImageRep* image = [NSBitmapImageRep imageRepWithData:data];
        std::map<unsigned, int> colours;
        const unsigned char* pBytes = [image bitmapData];
        for (NSInteger y = 0; y < [image pixelsHigh]; ++y)
        {
            for (NSInteger x = 0; x < [image pixelsWide]; ++x)
            {
                const unsigned char* p =
                    pBytes + y * [image bytesPerRow] + x * [image bitsPerPixel] / 8;
                ++colours[p[0] << 16 | p[1] << 8 | p[2]];
            }
        }
        return colours;
    }
};

class NoDisplay
{
  public:
    NoDisplay() : m_strDisplay(std::getenv("DISPLAY")) { ::unsetenv("DISPLAY"); }
    ~NoDisplay() { ::setenv("DISPLAY", m_strDisplay.c_str(), 1); }

  private:
    std::string m_strDisplay;
};

} // namespace

TEST_F(PaletteProgram, HelpAndVersionNeedNoDisplay)
{
    const NoDisplay none;
    const Ended help = Run({"--help"});
    EXPECT_EQ(help.nExitCode, 0);
    EXPECT_THAT(help.strOutput, HasSubstr("0 done, 1 a file could not be written, 2 wrong use"));
    const Ended version = Run({"--version"});
    EXPECT_EQ(version.nExitCode, 0);
    EXPECT_THAT(version.strOutput, StartsWith("tarvane-palette "));
}

TEST_F(PaletteProgram, StoresLoadsAndDumpsWithoutADisplay)
{
    const NoDisplay none;
    const std::string strFirst = m_folder / "first", strSecond = m_folder / "second";
    EXPECT_EQ(Run({"--store", strFirst}).nExitCode, 0);
    EXPECT_EQ(Run({"--load", strFirst, "--store", strSecond}).nExitCode, 0);
    EXPECT_EQ(TarvaneTest::FileText(strFirst), TarvaneTest::FileText(strSecond));
    const Ended dump = Run({"--load", strFirst, "--dump", "ccButtonFace"});
    EXPECT_EQ(dump.nExitCode, 0);
    EXPECT_EQ(dump.strOutput, "");
    EXPECT_THAT(dump.strError, StartsWith("\t{\n\t\tCGradientFill *pFill"));
}

TEST_F(PaletteProgram, DumpsTheGradientOfTheLoadedFile)
{
    const fs::path file = WriteEntries({MakeGradient(ccButtonFace, "Mine", 2)});
    EXPECT_THAT(Run({"--load", file, "--dump", "312"}).strError, HasSubstr("\"Mine\""));
}

TEST_F(PaletteProgram, ExitCodesTellUseFromFailure)
{
    EXPECT_EQ(Run({"--dump", "ccLabelText"}).nExitCode, 2);
    EXPECT_EQ(Run({"--load", m_folder / "none", "--dump", "312"}).nExitCode, 2);
    EXPECT_EQ(Run({"sheet.png"}).nExitCode, 2);
    EXPECT_EQ(Run({"--store", m_folder / "no/where"}).nExitCode, 1);
    const Ended picture = Run({"--save", m_folder / "no/where"});
    EXPECT_EQ(picture.nExitCode, 1);
    EXPECT_THAT(picture.strError, HasSubstr("cannot write the picture"));
}

TEST_F(PaletteProgram, WithoutADisplayNothingIsBegun)
{
    const NoDisplay none;
    const Ended outcome = Run({"--store", m_folder / "file", "--save", m_folder / "picture"});
    EXPECT_EQ(outcome.nExitCode, 2);
    EXPECT_THAT(outcome.strError, HasSubstr("no window can be opened here"));
    EXPECT_TRUE(m_folder.Files().empty());
}

TEST_F(PaletteProgram, SavesTheWholeSheetWithItsImages)
{
    EXPECT_EQ(Run({"--save", m_folder / "sheet.png"}).nExitCode, 0);
    std::map<unsigned, int> colours = Colours(m_folder / "sheet.png");
    EXPECT_GT(colours[0xc0c0c0], 10000) << "the swatches of the control text";
    EXPECT_GT(colours[0xb2b2b2], 10000) << "the swatches of the label text";
    EXPECT_GT(colours[0x4b5972], 10000) << "the swatches of the selection";
    int nBlue = 0;
    for (const auto& [nColour, nPixels] : colours)
    {
        nBlue += (nColour & 0xff) > 0xe0 && (nColour >> 16) < 0x80 ? nPixels : 0;
    }
    EXPECT_GT(nBlue, 100) << "the images of toggles that are on";
}

TEST_F(PaletteProgram, SavesThePaletteThatWasLoaded)
{
    const fs::path file = WriteEntries({MakeFlat(ccLabelText, "Red", 1)});
    EXPECT_EQ(Run({"--load", file, "--save", m_folder / "sheet.png"}).nExitCode, 0);
    std::map<unsigned, int> colours = Colours(m_folder / "sheet.png");
    EXPECT_GT(colours[0xff0000], 10000);
    EXPECT_LT(colours[0xb2b2b2], 1000);
}

TEST_F(PaletteProgram, WindowStandsUntilItIsClosed)
{
    CChildProcess process(Program({}));
    process.CloseInput();
    const char* szFind = "xdotool search --sync --onlyvisible --name '^Tarvane Link palette$' "
                         "windowactivate --sync 2>/dev/null";
    ASSERT_EQ(std::system(szFind), 0);
    EXPECT_TRUE(process.IsRunning());
    // Until the window manager has made friends with the window, the key goes nowhere.
    const auto begin = std::chrono::steady_clock::now();
    while (!process.WaitForEnd(std::chrono::milliseconds(500)) &&
           std::chrono::steady_clock::now() - begin < kLong)
    {
        EXPECT_EQ(std::system("xdotool key alt+F4"), 0);
    }
    EXPECT_EQ(process.WaitForEnd(std::chrono::milliseconds(0)), 0) << process.ErrorOutput();
}
