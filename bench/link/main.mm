// bench-link: what the link costs. Needs a bus and a display of its own:
//
//     scripts/with-desktop --private build/bench/bin/bench-link
//
// Commands and deliveries go over the real bus, and beside each goes a raw trip: the bus library's
// blocking call with the same bytes to the same receiver. What is left is the link's cost in its
// host. There are two receivers:
//
//   server    tarvane-server, which runs each script.
//   receiver  bench-link-receiver, which is built on the platform layer and runs nothing, so that
//             nobody's work hides what the link costs.
//
// For the eye, the raw caller speaks to a receiver built on the bus library alone too, "bus alone":
// what the platform layer's receiving side costs shows beside it.
//
// A delivery is the whole of what the view does for a captured element: its properties, its three
// commands, its acknowledge. Every repetition is short, and they come in random order; what is
// compared are medians. Menus and views are filled by the receiver, whose lists cost the same for
// each track. A track's cost is what it adds to filling a menu of one, so that the command and the
// choice of a track, which are the same for all, are not shared out among few or many.
#include "apps/support/process/ChildProcess.h"
#include "bench/link/Bench.h"
#include "bench/link/BenchUnit.h"
#include "bench/support/Measure.h"

#import <AppKit/AppKit.h>

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;
using Tarvane::CChildProcess;

namespace
{

constexpr int kDeliveries = 8; // a repetition, to those who do not know a capture again

// A folder with the captured file in it, which goes with the object.
struct Capture
{
    Capture()
    {
        std::string strTemplate = (fs::temp_directory_path() / "tarvane-bench-XXXXXX").string();
        if (mkdtemp(strTemplate.data()) == nullptr)
            throw std::runtime_error("cannot make a temporary folder");
        folder = strTemplate;
        SF_INFO info{};
        info.samplerate = 48000;
        info.channels = 1;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        SNDFILE* pFile = sf_open((folder / "take.wav").c_str(), SFM_WRITE, &info);
        const std::vector<short> frames(480, 1000);
        sf_write_short(pFile, frames.data(), 480);
        sf_close(pFile);
        Bench::SetCaptureFile(folder / "take.wav");
    }
    ~Capture()
    {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    fs::path folder;
};

// A program beside this one, which says when it can be spoken to.
void Start(std::unique_ptr<CChildProcess>& child, std::vector<std::string> command)
{
    command[0] = Tarvane::ProgramFolder() / command[0];
    child = std::make_unique<CChildProcess>(command);
    if (!child->WaitForLine("ready", std::chrono::minutes(1)))
        throw std::runtime_error(command[0] + " is not ready: " + child->Output() +
                                 child->ErrorOutput());
}

void TeachRawReceiver(Bench::CRawCaller& caller, const Bench::Scripts& scripts)
{
    caller.Teach(scripts.command, caller.Trip(Bench::kServerName, scripts.command));
    for (const std::string& script : scripts.delivery)
        caller.Teach(script, caller.Trip(Bench::kServerName, script));
}

void RunBench()
{
    const Capture capture;
    std::unique_ptr<CChildProcess> receiver, rawReceiver, server;
    Start(receiver, {"bench-link-receiver"});
    Start(rawReceiver, {"bench-link-raw-receiver"});
    Bench::CRawCaller caller;
    const Bench::Scripts scripts = Bench::RecordScripts();
    TeachRawReceiver(caller, scripts);

    Bench::RegisterExchanges(", receiver", scripts, caller, kDeliveries);
    Bench::RegisterRawTrips(", bus alone", scripts, caller, Bench::kRawName, kDeliveries);
    Bench::Compare("command, receiver", "raw trip, bus alone");
    Bench::Compare("delivery, receiver", "three raw trips, bus alone");
    Bench::RegisterSplitting();
    Bench::RegisterNotifications();
    Bench::RegisterMenus();
    Bench::RegisterViews();
    Bench::Run();

    receiver.reset();
    Start(server, {"tarvane-server", "--track", "Dialogue", "--track", "ADR", "--track", "Foley",
                   "--link-offset", "2"});
    Bench::RegisterExchanges(", server", scripts, caller, 1);
    Bench::Run();
}

// The command line's own come later, and win.
void ReadArguments(int argc, char** argv)
{
    static char szRepetitions[] = "--benchmark_repetitions=201";
    static char szInterleaved[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, {szRepetitions, szInterleaved});
    int nArguments = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&nArguments, arguments.data());
}

} // namespace

int main(int argc, char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    ReadArguments(argc, argv);
    [NSProcessInfo initializeWithArguments:argv count:1 environment:environ];
    [NSApplication sharedApplication];
    // Where the view's diagnostic lines go.
    std::freopen("/dev/null", "w", stderr);
    int nResult = 1;
    try
    {
        RunBench();
        nResult = Bench::Report() == 0 ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::printf("bench-link: %s\n", error.what());
    }
    [pool drain];
    return nResult;
}
