#include "apps/demo/Demo.h"

#include "apps/server/database/SessionStore.h"
#include "apps/support/sound/CaptureFolder.h"
#include "apps/support/sound/SoundFile.h"
#include "apps/support/text/Timecode.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <iostream>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace Tarvane
{
namespace
{

constexpr const char* kRecordings[] = {"/usr/share/sounds/alsa/Front_Center.wav",
                                       "/usr/share/sounds/alsa/Front_Left.wav"};
constexpr const char* kTracks[] = {"Dialogue", "ADR", "Foley", "Ambience"};
constexpr double kLinkOffset = 2.0; // seconds
// A delivery may take three minutes where the server does not answer.
constexpr auto kDeliveryTimeout = 4min;
constexpr auto kServerTimeout = 60s;

volatile std::sig_atomic_t g_fSignalled = 0;
void NoteSignal(int)
{
    g_fSignalled = 1;
}

fs::path CaptureFolder(const fs::path& out)
{
    return out.lexically_normal() / "captures";
}

// What the host would refuse is refused here, before anything is begun.
std::vector<CCaptureSource> LayOut(const std::vector<std::string>& files, const fs::path& captures)
{
    std::vector<CCaptureSource> sources;
    for (const std::string& strFile : files)
    {
        const CSoundReader reader(strFile);
        CheckCapturePath(captures, reader);
        double dPosition = 0;
        if (!sources.empty())
        {
            const CSoundReader last(sources.back().file);
            dPosition =
                PositionBehind(sources.back().dPosition, static_cast<double>(last.Info().frames),
                               last.Info().samplerate, reader.Info().samplerate);
        }
        sources.push_back({reader.Path(), dPosition});
    }
    return sources;
}

std::vector<std::string> FilesOf(const DemoOptions& options)
{
    return options.files.empty()
               ? std::vector<std::string>(std::begin(kRecordings), std::end(kRecordings))
               : options.files;
}

std::string Program(const char* szName)
{
    return ProgramNamed(szName).string();
}

double Seconds(double dFrames, double dSampleRate)
{
    return dSampleRate > 0 ? dFrames / dSampleRate : 0;
}

std::string Acknowledge(const nlohmann::json& answer)
{
    std::string strText = answer.value("outcome", "");
    if (const std::string strMessage = answer.value("message", ""); !strMessage.empty())
    {
        strText += ": \"" + strMessage + "\" \"" + answer.value("advice", "") + "\"";
    }
    return strText;
}

} // namespace

void DeclareOptions(CLI::App& app, DemoOptions& options)
{
    app.add_option("SOUND_FILE", options.files,
                   "Recordings to capture (default: two that come with the system)");
    app.add_option(
           "--out", options.strOut,
           "Where the results go: session.txt, link-view.png, the session, the captures and "
           "logs. Results of an earlier run are replaced, other files never (default: out)")
        ->type_name("DIR");
    app.add_option("--speed", options.strSpeed,
                   "Times real time, or max for as fast as the disk allows (default 1)")
        ->type_name("X|max");
    app.add_flag("--headless", options.fHeadless,
                 "End when all is done. Without it the window stays open for use by hand");
}

CDemo::CDemo(const DemoOptions& options)
    : m_options(options),
      m_sources(LayOut(FilesOf(options), CaptureFolder(fs::absolute(options.strOut)))),
      m_out(options.strOut)
{
    m_out.RemoveEarlier();
    m_session = m_out.Claim("session.tarvane");
    m_out.Claim(".session.tarvane.lock");
    m_out.Claim("server.log");
    m_out.Claim("plug-in.log");
    m_out.Claim("link-view.png");
    m_out.Claim("session.txt");
}

int CDemo::Run()
{
    std::signal(SIGINT, &NoteSignal);
    std::signal(SIGTERM, &NoteSignal);
    StartServer();
    StartHost();
    CaptureAll();
    SaveResults();
    const bool fGood = Judge();
    if (!m_options.fHeadless)
    {
        StayOpen();
    }
    return fGood ? kExitDone : kExitFailed;
}

void CDemo::StartServer()
{
    std::vector<std::string> arguments = {Program("tarvane-server"),
                                          "--session",
                                          m_session.string(),
                                          "--link-offset",
                                          std::to_string(kLinkOffset),
                                          "--log",
                                          (m_out.Path() / "server.log").string()};
    for (const char* szTrack : kTracks)
    {
        arguments.insert(arguments.end(), {"--track", szTrack});
    }
    m_server.emplace(arguments);
    if (!m_server->WaitForLine("ready", kServerTimeout))
    {
        throw std::runtime_error("the server did not start: " + m_server->ErrorOutput());
    }
    std::cout << "Server: a session of the tracks Dialogue, ADR, Foley and Ambience, its timeline "
              << kLinkOffset << " s ahead of the host's" << std::endl;
}

void CDemo::StartHost()
{
    const fs::path captures = CaptureFolder(m_out.Path());
    std::vector<std::string> arguments = {Program("tarvane-host"),
                                          "--capture-folder",
                                          captures.string(),
                                          "--speed",
                                          m_options.strSpeed,
                                          "--once",
                                          "--log",
                                          (m_out.Path() / "plug-in.log").string()};
    for (const CCaptureSource& source : m_sources)
    {
        arguments.push_back(source.file.string());
    }
    m_host.emplace(arguments, [] { return g_fSignalled != 0; });
    std::cout << "Host:   the link view is open, its menu has "
              << m_host->Ready().value("tracks", nlohmann::json::array()).size() << " tracks\n"
              << std::endl;
}

void CDemo::CaptureAll()
{
    for (size_t nFile = 0; nFile < m_sources.size(); ++nFile)
    {
        Capture(nFile, false);
    }
    Capture(0, true);
}

void CDemo::Capture(size_t nFile, bool fDuplicate)
{
    const CCaptureSource& source = m_sources[nFile];
    const size_t nTrack = nFile % std::size(kTracks);
    const CSoundReader reader(source.file);
    const double dLength =
        Seconds(static_cast<double>(reader.Info().frames), reader.Info().samplerate);
    m_host->Ask("track " + std::to_string(nTrack), kDeliveryTimeout);
    const auto timeout =
        kDeliveryTimeout + std::chrono::milliseconds(static_cast<long long>(dLength * 1000));
    DemoCapture capture{source.file.string(), kTracks[nTrack], source.dPosition, fDuplicate,
                        m_host->Capture(source.file.string(), source.dPosition, timeout)};
    m_captures.push_back(capture);
    AdoptCaptures();

    const Server::Region region = ExpectedRegion(capture, kLinkOffset);
    const double dRate = region.nSampleRate;
    char szLength[64];
    std::snprintf(szLength, sizeof szLength, "%.3f s, ",
                  Seconds(static_cast<double>(region.nEnd), dRate));
    std::cout << "Capture " << m_captures.size() << ": " << source.file.filename().string()
              << (fDuplicate ? ", once more" : "") << "\n  captured     " << szLength << region.nEnd
              << " samples at " << region.nSampleRate << " Hz"
              << "\n  track        " << capture.strTrack << "\n  offset       " << kLinkOffset
              << " s, on top of sample " << FormatSamples(source.dPosition) << "\n  position     "
              << region.nPosition << ", "
              << FormatTimecode(static_cast<double>(region.nPosition), dRate) << "\n  acknowledged "
              << Acknowledge(capture.hostAnswer) << "\n"
              << std::endl;
}

// What was captured, by hand too, is a result of ours: the next run may clear it away.
void CDemo::AdoptCaptures()
{
    for (const nlohmann::json& answer : m_host->Everything())
    {
        if (const std::string strDub = answer.value("dub", ""); !strDub.empty())
        {
            m_out.Adopt(strDub);
        }
    }
}

void CDemo::SaveResults()
{
    m_host->Ask("screenshot \"" + (m_out.Path() / "link-view.png").string() + "\"",
                kDeliveryTimeout);
    CChildProcess listing({Program("tarvane-server"), "--list-session", m_session.string()});
    if (listing.WaitForEnd(kServerTimeout) != 0)
    {
        throw std::runtime_error("the server cannot list its session: " + listing.ErrorOutput());
    }
    m_out.WriteText("session.txt", listing.Output());
}

Server::CSession CDemo::Session() const
{
    std::optional<Server::CSession> session = Server::CSessionStore(m_session).Load();
    if (!session)
    {
        throw std::runtime_error("the server has written no session.");
    }
    return *session;
}

bool CDemo::Judge()
{
    const std::vector<std::string> faults = FindFaults(m_captures, Session(), kLinkOffset);
    for (const std::string& strFault : faults)
    {
        std::cout << "Wrong:   " << strFault << std::endl;
    }
    if (faults.empty())
    {
        const std::size_t nRegions = m_captures.size() - 1;
        std::cout << "Checked: the server's session holds exactly "
                  << (nRegions == 1 ? "this 1 region where it"
                                    : "these " + std::to_string(nRegions) + " regions where they")
                  << " should be, and every acknowledge is right." << std::endl;
    }
    std::cout << "Results: " << (m_out.Path() / "session.txt").string() << "\n         "
              << (m_out.Path() / "link-view.png").string() << std::endl;
    return faults.empty();
}

void CDemo::StayOpen()
{
    std::cout << "\nThe window stays open: choose a track, press the toggle to capture the next "
                 "recording, press it again to end early. Close the window to end."
              << std::endl;
    while (g_fSignalled == 0 && !m_host->Process().WaitForEnd(200ms))
    {
    }
    AdoptCaptures();
}

} // namespace Tarvane
