#include "TarvaneLinkShared/TarvaneLinkScript.h"
#import "apps/host/LinkView.h"
#include "apps/host/PlugIn.h"
#include "apps/link/Link.h"
#include "apps/server/Options.h"
#include "apps/server/database/SessionStore.h"
#include "apps/session/SessionTool.h"
#include "tests/apps/server/ScriptClient.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"
#include "tests/apps/text/TextCases.h"
#include "tests/apps/text/TextPage.h"
#include "tests/support/DecimalComma.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Utf16.h"
#include "utils/FileIO/FileName.h"
#include "utils/ParameterBlock.h"

#import <AppKit/AppKit.h>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>

// One bus, one server, one view and one plug-in, for every text of the table; and the page that
// tells users of it.

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::HasSubstr;

namespace
{

constexpr std::chrono::minutes kLong{2};
constexpr size_t kFrames = 32;
// Far enough apart that no take lies where another one is due.
constexpr double kStep = 1000;

struct Ended
{
    int nExitCode;
    std::string strOutput, strError;
};

// A program of ours, in this process and so in its locale.
Ended RunHere(int (*program)(int, char**), std::vector<std::string> arguments)
{
    std::vector<char*> pointers;
    for (std::string& strArgument : arguments)
    {
        pointers.push_back(strArgument.data());
    }
    pointers.push_back(nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int nExitCode = program(static_cast<int>(arguments.size()), pointers.data());
    return {nExitCode, testing::internal::GetCapturedStdout(),
            testing::internal::GetCapturedStderr()};
}

void ExpectRefused(const Fate& fate, const std::string& strWords)
{
    EXPECT_EQ(fate.kind, Fate::kRefused) << strWords;
    EXPECT_THAT(strWords, HasSubstr(fate.strText));
}

// Text that arrived.
void ExpectArrived(const Fate& fate, const std::string& strSent, const std::string& strArrived)
{
    EXPECT_NE(fate.kind, Fate::kRefused) << strArrived;
    EXPECT_EQ(strArrived, fate.kind == Fate::kCarried ? strSent : fate.strText);
}

// Which would take the text for a part of the script itself, did it hold the closing bracket.
std::string PrintingScript(const std::string& strText)
{
    return "print([=====[<" + strText + ">]=====])";
}
std::string Printed(const std::string& strText) { return "<" + strText + ">\n"; }

std::string TrackFlaw(const std::string& strName)
{
    CLI::App app;
    Server::Options options;
    Server::DeclareOptions(app, options);
    try
    {
        // From the last to the first, as the library wants them.
        app.parse(std::vector<std::string>{strName, "--track"});
        return options.trackNames == std::vector<std::string>{strName} ? "" : "read otherwise";
    }
    catch (const CLI::ParseError& error)
    {
        return error.what();
    }
}

// Where a take is due, or lies.
struct Place
{
    std::string strFile, strTrack;

    bool operator==(const Place&) const = default;
};
void PrintTo(const Place& place, std::ostream* pOut)
{
    *pOut << testing::PrintToString(place.strFile) << " on "
          << testing::PrintToString(place.strTrack);
}

class TextTorture : public testing::TestWithParam<const char*>
{
  protected:
    TextTorture()
    {
        if (std::strcmp(GetParam(), "C") != 0)
        {
            m_locale.emplace(GetParam());
        }
        setenv("LC_ALL", GetParam(), 1);
    }
    ~TextTorture() override { unsetenv("LC_ALL"); }

    std::string SessionFile() const { return m_folder / "session"; }

    // A server with each, or every n-th, of the texts that can be a track's name.
    void StartServer(size_t nStep = 1)
    {
        std::vector<std::string> command{SERVER_PROGRAM, "--session", SessionFile()};
        for (size_t n = 0; n < std::size(kTextCases); n += nStep)
        {
            const TextCase& text = kTextCases[n];
            if (text.track.kind == Fate::kCarried)
            {
                m_tracks.push_back(text.strText);
                m_titles.push_back(text.title.kind == Fate::kCarried ? text.strText
                                                                     : text.title.strText);
                command.insert(command.end(), {"--track", text.strText});
            }
        }
        m_server.emplace(command);
        ASSERT_TRUE(m_server->WaitForLine("ready", kLong)) << m_server->ErrorOutput();
    }
    int NextTrack() { return m_nTrack = (m_nTrack + 1) % static_cast<int>(m_tracks.size()); }

    void ExpectEvent(const TextCase& text);
    void ExpectCommand(const TextCase& text);
    void ExpectPath(const TextCase& text, int nTrack);
    void ExpectSent(const TextCase& text, int nTrack);
    void ExpectCaptured(const TextCase& text, int nTrack, CPlugIn& plugIn, CLinkView& view);

    // A sound file of this name in a folder of its own; a name that no file can have gets none.
    std::string MakeSound(const TextCase& text) const
    {
        const std::filesystem::path folder = m_folder / "sounds";
        std::filesystem::create_directory(folder);
        const std::string strPath = folder.string() + "/" + text.strText;
        if (text.dub.kind != Fate::kImpossible)
        {
            WriteSound(strPath, SF_FORMAT_WAV | SF_FORMAT_PCM_16, kFrames);
        }
        return strPath;
    }

    // The take that is sent next lies here.
    double NextPosition() { return kStep * ++m_nTakes; }
    void ExpectLater(const std::string& strFile, int nTrack)
    {
        m_due[kStep * m_nTakes] = {strFile, m_tracks[static_cast<size_t>(nTrack)]};
    }

    CTemporaryFolder m_folder;
    std::optional<TarvaneTests::DecimalComma> m_locale;
    TarvaneTests::PrivateBus m_bus;
    std::optional<CChildProcess> m_server;
    std::vector<std::string> m_tracks, m_titles;
    CTarvaneScript m_script;
    int m_nTakes = 0, m_nTrack = 0;
    std::map<double, Place> m_due; // by position
};

void TextTorture::ExpectEvent(const TextCase& text)
{
    if (text.event.kind == Fate::kImpossible)
    {
        return;
    }
    const std::u16string units = TarvaneTests::Utf16FromUtf8(PrintingScript(text.strText));
    const std::string bytes(reinterpret_cast<const char*>(units.data()), units.size() * 2);
    const CScriptAnswer answer = SendBytes(typeUnicodeText, bytes);
    EXPECT_EQ(answer.nStatus, noErr);
    ASSERT_TRUE(answer.result);
    Fate fate = text.event;
    fate.strText = Printed(fate.strText);
    ExpectArrived(fate, Printed(text.strText), *answer.result);
}

void TextTorture::ExpectCommand(const TextCase& text)
{
    m_script.m_fUserError = false;
    char* szResult = nullptr;
    const int nStatus = m_script.SendCommand(PrintingScript(text.strText).c_str(), &szResult, -1);
    const std::unique_ptr<char[]> result(szResult);
    if (nStatus != noErr || !m_script.m_strLastError.empty())
    {
        ExpectRefused(text.command, m_script.m_strLastError);
        return;
    }
    Fate fate = text.command;
    fate.strText = Printed(fate.strText);
    ExpectArrived(fate, Printed(text.strText), result.get());
}

void TextTorture::ExpectPath(const TextCase& text, int nTrack)
{
    const std::string strPath = MakeSound(text);
    CFileName file(&strPath);
    const int nStatus =
        m_script.SendFile(false, nTrack, &file, NextPosition(), 0, double(kFrames), 0);
    // The server's words are not the view's to see.
    if (nStatus == errAEDescNotFound)
    {
        EXPECT_EQ(text.path.kind, Fate::kRefused);
        return;
    }
    if (nStatus != noErr || !m_script.m_strLastError.empty())
    {
        ExpectRefused(text.path, m_script.m_strLastError);
        return;
    }
    EXPECT_EQ(text.path.kind, Fate::kCarried);
    ExpectLater(strPath, nTrack);
}

void TextTorture::ExpectSent(const TextCase& text, int nTrack)
{
    if (text.sent.kind == Fate::kImpossible)
    {
        return;
    }
    const std::string strPath = MakeSound(text);
    const std::string strPosition = std::to_string(static_cast<long>(NextPosition()));
    const Ended sent = RunHere(Link::RunLink, {"tarvane-link", "--json", "send", strPath, "--track",
                                               std::to_string(nTrack), "--position", strPosition});
    if (sent.nExitCode != 0)
    {
        ExpectRefused(text.sent, sent.strError);
        return;
    }
    ExpectArrived(text.sent, strPath, json::parse(sent.strOutput).at("file"));
    ExpectLater(strPath, nTrack);
}

void RunLoopOnce()
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.001]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    [NSApp sendEvent:event];
    [pool drain];
}

void TextTorture::ExpectCaptured(const TextCase& text, int nTrack, CPlugIn& plugIn, CLinkView& view)
{
    if (text.dub.kind == Fate::kImpossible)
    {
        return;
    }
    const std::filesystem::path folder = m_folder / ("captures " + std::to_string(m_nTakes));
    std::filesystem::create_directory(folder);
    CSignalSettings settings;
    settings.captureFolder = folder;
    settings.dSpeed = 0;
    plugIn->Configure(settings);
    ASSERT_TRUE(view.ChooseTrack(nTrack));

    std::optional<CCaptureReport> report;
    std::atomic<bool> fOver{false};
    plugIn->SetObserver(
        [&](const CCaptureReport& seen)
        {
            if (seen.IsOver())
            {
                report = seen;
                fOver = true;
            }
        });
    plugIn->SetSource({MakeSound(text), NextPosition()});
    ASSERT_TRUE(view.PressToggle());
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:90];
    while (!fOver && [limit timeIntervalSinceNow] > 0)
    {
        RunLoopOnce();
    }
    plugIn->SetObserver(nullptr);
    ASSERT_TRUE(fOver);
    EXPECT_TRUE(report->IsDelivered());
    EXPECT_EQ(view.Words().strMessage, "");
    const std::string strDub = report->dub.filename().string();
    const std::string strNumber = "-001.wav";
    ASSERT_GT(strDub.size(), strNumber.size());
    ExpectArrived(text.dub, text.strText, strDub.substr(0, strDub.size() - strNumber.size()));
    EXPECT_EQ(ReadSound(report->dub).samples.size(), kFrames);
    ExpectLater(report->dub, nTrack);
}

std::map<double, Place> TakesIn(const std::string& strSession)
{
    std::map<double, Place> takes;
    const Server::CSession session = Server::CSessionStore(strSession).Load().value();
    const Server::Document& document = session.GetDocument(Server::DocumentKind::Script);
    for (const Server::Region& region : document.regions)
    {
        const Place place{region.strPath, document.FindTrack(region.nTrackId)->strName};
        EXPECT_TRUE(takes.emplace(double(region.nPosition), place).second) << "one take, twice";
    }
    return takes;
}

INSTANTIATE_TEST_SUITE_P(Locales, TextTorture, testing::Values("C", "de_DE.UTF-8", "tr_TR.UTF-8"),
                         [](const auto& info)
                         {
                             const std::string strLocale = info.param;
                             return strLocale.substr(0, strLocale.find('_'));
                         });

} // namespace

TEST_P(TextTorture, EveryTextIsCarriedOrRefused)
{
    StartServer();
    // Each at its place, in the list, in JSON and in the menu.
    std::vector<std::string> listed;
    EXPECT_TRUE(m_script.ListTracks(false, &listed));
    EXPECT_EQ(listed, m_tracks);
    const Ended tracks = RunHere(Link::RunLink, {"tarvane-link", "--json", "tracks"});
    EXPECT_EQ(json::parse(tracks.strOutput).at("tracks").get<std::vector<std::string>>(), m_tracks);
    const CPlugIn plugIn;
    const CLinkView view(TARVANE_LINK_BUNDLE, plugIn.Unit());
    EXPECT_EQ(view.Tracks(), m_titles);

    for (const TextCase& text : kTextCases)
    {
        SCOPED_TRACE(text.szName);
        if (text.track.kind == Fate::kRefused)
        {
            ExpectRefused(text.track, TrackFlaw(text.strText));
        }
        ExpectEvent(text);
        ExpectCommand(text);
        ExpectPath(text, NextTrack());
        ExpectSent(text, NextTrack());
    }
    EXPECT_EQ(TakesIn(SessionFile()), m_due);
}

TEST_P(TextTorture, NoCaptureGoesAstray)
{
    StartServer(8); // filling a menu takes its time, and each capture fills it three times
    CPlugIn plugIn;
    CLinkView view(TARVANE_LINK_BUNDLE, plugIn.Unit());
    EXPECT_EQ(view.Tracks(), m_titles);
    for (const TextCase& text : kTextCases)
    {
        SCOPED_TRACE(text.szName);
        ExpectCaptured(text, NextTrack(), plugIn, view);
    }
    EXPECT_EQ(TakesIn(SessionFile()), m_due);
    plugIn->End();
}

TEST_P(TextTorture, SessionsCarryEveryTextToJsonAndBack)
{
    CParameterBlock root;
    for (const TextCase& text : kTextCases)
    {
        root.AddParameter(text.strText.c_str(), "");
        static_cast<CStringParameter&>(*root.m_vParameters.back()).m_strValue = text.strText;
    }
    CFileName saved((m_folder / "saved").c_str());
    ASSERT_EQ(root.SaveBinarySession(&saved), 0);
    const std::string strText = m_folder / "text.json";
    for (const auto& arguments :
         {std::vector<std::string>{"tarvane-session", "to-json", m_folder / "saved", strText},
          {"tarvane-session", "from-json", strText, m_folder / "again"}})
    {
        const Ended ended = RunHere(Session::RunSession, arguments);
        EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    }
    EXPECT_TRUE(json::accept(std::ifstream(strText)));

    for (const char* szFile : {"saved", "again"})
    {
        SCOPED_TRACE(szFile);
        CParameterBlock loaded;
        CFileName file((m_folder / szFile).c_str());
        ASSERT_EQ(loaded.LoadBinarySession(&file), 0);
        ASSERT_EQ(loaded.m_vParameters.size(), std::size(kTextCases));
        for (size_t n = 0; n < std::size(kTextCases); ++n)
        {
            SCOPED_TRACE(kTextCases[n].szName);
            const auto& entry = static_cast<const CStringParameter&>(*loaded.m_vParameters[n]);
            EXPECT_EQ(std::string(entry.m_strValue), kTextCases[n].strText);
            ExpectArrived(kTextCases[n].entry, kTextCases[n].strText, std::string(entry.m_strName));
        }
    }
}

TEST(TextPage, SaysWhatTheTableSays)
{
    std::ostringstream page;
    page << std::ifstream(TEXT_PAGE, std::ios::binary).rdbuf();
    std::ofstream(TEXT_PAGE_SEEN, std::ios::binary) << TextPage();
    EXPECT_TRUE(page.str() == TextPage())
        << "If the table is right, copy " TEXT_PAGE_SEEN " to " TEXT_PAGE ".";
}
