// tarvane-soak-plug-in: the plug-in as a host has it, the capture core with the view in a process
// of its own, but told line by line what to capture, as "tarvane-host --commands" is: capture,
// track and state are known, and answered in the same words.
#include "apps/support/program/CommandLine.h"
#include "apps/support/sound/CaptureFolder.h"
#include "apps/support/unit/PropertyLog.h"
#include "plugin/view/ViewSupervisor.h"
#include "signal/CaptureCore.h"
#include "signal/PropertyStatus.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <iomanip>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>

namespace
{

using namespace Tarvane;

// What a host's session would keep: by it a new process finds what the one before has left.
constexpr const char* kUuid = "74617276-616e-4e65-8c69-736f616b2020";

constexpr std::uint32_t kBlockFrames = 64;

void Log(const std::string& strLine)
{
    std::cerr << "tarvane-soak-plug-in: " << strLine << std::endl;
}

CCaptureSettings SettingsFor(const std::string& strFolder)
{
    CCaptureSettings settings;
    settings.captureFolder = strFolder;
    return settings;
}

const char* WordFor(const CTake& take)
{
    if (take.state == TakeState::Failed)
        return "failed";
    if (take.outcome == TakeOutcome::Duplicate)
        return "duplicate";
    return take.ack->fNotDelivered == 0 ? "delivered" : "not delivered";
}

nlohmann::json Describe(const CTake& take)
{
    nlohmann::json text = {{"outcome", WordFor(take)},
                           {"element", take.nElement},
                           {"dub", take.file.string()},
                           {"frames", take.nFrames},
                           {"position", static_cast<std::int64_t>(take.dPosition)},
                           {"track", take.nTrack},
                           {"withoutOffset", take.outcome == TakeOutcome::PlacedWithoutOffset}};
    text["fate"] = take.outcome ? nlohmann::json(TakeOutcomeWord(*take.outcome)) : nlohmann::json();
    return text;
}

class CPlugInHost
{
public:
    CPlugInHost(const std::string& strFolder, std::int32_t nTrack)
        : m_core(SettingsFor(strFolder)), m_view(m_core, VIEW_PROGRAM, &Log)
    {
        m_core.SetLog(&Log);
        m_core.SetObserver([this](const CTake& take) { TakeChanged(take); });
        m_core.Restore(kUuid, nTrack);
    }

    void Run();

private:
    nlohmann::json Obey(std::istream& words, const std::string& strCommand);
    nlohmann::json Capture(const std::string& strFile, std::int64_t nPosition);
    void Play(CSoundReader& source, std::int64_t nPosition);
    void ChooseTrack(std::int32_t nTrack);
    nlohmann::json State();
    void TakeChanged(const CTake& take);
    void TellEnd(const CTake& take, bool fLate);
    void Tell(const nlohmann::json& text) { std::cout << text.dump() << std::endl; }

    enum class Stage : std::uint8_t
    {
        Unknown,
        Open,
        WaitsForServer,
        Settled,
    };

    std::mutex m_mutex; // guards these, and the output
    std::condition_variable m_changed;
    std::vector<Stage> m_stages; // by the number of the take
    std::optional<std::uint32_t> m_captured;
    std::optional<nlohmann::json> m_answer; // to the capture that is asked for

    CCaptureCore m_core;
    CViewSupervisor m_view;
};

void CPlugInHost::Run()
{
    Tell({{"command", "ready"}, {"ok", true}});
    for (std::string strLine; std::getline(std::cin, strLine);)
    {
        std::istringstream words(strLine);
        std::string strCommand;
        words >> strCommand;
        nlohmann::json answer;
        try
        {
            answer = Obey(words, strCommand);
            answer["ok"] = true;
        }
        catch (const CUsageError& error)
        {
            answer = {{"ok", false}, {"error", error.what()}};
        }
        answer["command"] = strCommand;
        const std::lock_guard lock(m_mutex);
        Tell(answer);
    }
}

nlohmann::json CPlugInHost::Obey(std::istream& words, const std::string& strCommand)
{
    if (strCommand == "capture")
    {
        std::string strFile;
        std::int64_t nPosition = 0;
        words >> std::quoted(strFile) >> nPosition;
        return Capture(strFile, nPosition);
    }
    if (strCommand == "track")
    {
        std::int32_t nTrack = 0;
        words >> nTrack;
        ChooseTrack(nTrack);
        return State();
    }
    if (strCommand == "state")
        return State();
    throw CUsageError("no such command - use capture FILE SAMPLES, track N or state.");
}

// Answers when the view has acknowledged the take, whichever process it is in by then.
nlohmann::json CPlugInHost::Capture(const std::string& strFile, std::int64_t nPosition)
{
    CSoundReader source(strFile);
    m_core.Prepare(TakeFormatFor(source));
    {
        const std::lock_guard lock(m_mutex);
        m_captured.reset();
        m_answer.reset();
    }
    m_core.SetArmed(true);
    Play(source, nPosition);
    m_core.SetArmed(false);
    m_core.EndTake();
    m_core.WaitUntilWritten();
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_answer.has_value(); });
    return *m_answer;
}

// The core disarms when the disk takes no more.
void CPlugInHost::Play(CSoundReader& source, std::int64_t nPosition)
{
    const auto nChannels = static_cast<std::size_t>(source.Info().channels);
    CSampleBlock block(SampleType::Integer, source.Info().channels, kBlockFrames);
    std::vector<std::array<std::int32_t, kBlockFrames>> samples(nChannels);
    std::vector<const std::int32_t*> channels;
    for (const auto& channel : samples)
        channels.push_back(channel.data());
    while (m_core.IsArmed())
    {
        const std::size_t nFrames = source.Read(block);
        if (nFrames == 0)
            return;
        const auto* pnSamples = static_cast<const std::int32_t*>(block.Data());
        for (std::size_t n = 0; n < nFrames * nChannels; ++n)
            samples[n % nChannels][n / nChannels] = pnSamples[n];
        m_core.Process({true, true, 1, static_cast<double>(nPosition)}, channels.data(),
                       static_cast<std::uint32_t>(nFrames));
        m_core.WaitUntilWritten();
        nPosition += static_cast<std::int64_t>(nFrames);
    }
}

// The view reads it when it is next told of the armed state, ahead of the take.
void CPlugInHost::ChooseTrack(std::int32_t nTrack)
{
    m_core.SetProperty(TNProperty_SelectedTrack, kPropertyScope_Global, 0, &nTrack, sizeof nTrack);
}

// Nothing waits only when it has been told as well what became of it.
nlohmann::json CPlugInHost::State()
{
    const std::lock_guard lock(m_mutex);
    const auto nOpen =
        static_cast<std::size_t>(std::count(m_stages.begin(), m_stages.end(), Stage::Open));
    return {{"waiting", std::max(m_core.Waiting(), nOpen)}, {"unreachable", m_core.Unreachable()}};
}

// The acknowledge of a take may be told by one thread before another has told that it waits.
void CPlugInHost::TakeChanged(const CTake& take)
{
    const std::lock_guard lock(m_mutex);
    if (m_stages.size() <= take.nNumber)
        m_stages.resize(take.nNumber + 1);
    Stage& stage = m_stages[take.nNumber];
    if (stage == Stage::Unknown)
        stage = Stage::Open;
    if (take.state == TakeState::Running && !m_captured)
        m_captured = take.nNumber;
    if (take.state != TakeState::Acknowledged && take.state != TakeState::Failed)
        return;
    const bool fLate = take.fRecovered || stage == Stage::WaitsForServer;
    stage = take.outcome && IsOfferedAgain(*take.outcome) ? Stage::WaitsForServer : Stage::Settled;
    TellEnd(take, fLate);
}

void CPlugInHost::TellEnd(const CTake& take, bool fLate)
{
    if (take.ack)
        std::cerr << DescribeWrite(TNProperty_ElementDone, &*take.ack, sizeof *take.ack)
                  << std::endl;
    nlohmann::json text = Describe(take);
    if (fLate)
    {
        text["event"] = "late";
        Tell(text);
    }
    else if (!m_captured || take.nNumber == *m_captured)
    {
        m_answer = text;
        m_changed.notify_all();
    }
}

int RunHost(const std::string& strFolder, std::int32_t nTrack)
{
    CPlugInHost(strFolder, nTrack).Run();
    return kExitDone;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app(
        "Captures what it is told on its standard input with the plug-in's capture core, "
        "and has it delivered by the view in a process of its own. tarvane-soak starts it.",
        "tarvane-soak-plug-in");
    AddCommonOptions(app, "something went wrong");
    std::string strFolder;
    std::int32_t nTrack = 0;
    bool fCommands = false;
    app.add_option("--capture-folder", strFolder, "Where the takes go")->required();
    app.add_option("--track", nTrack, "The track that is chosen at first (default 0)");
    app.add_flag("--commands", fCommands, "Of no effect: it is always told what to do");
    return RunProgram(app, argc, argv, [&] { return RunHost(strFolder, nTrack); });
}
