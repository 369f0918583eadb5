// Delivers captures by the thousand through one host to one server, and watches the memory of both.
// Needs a bus and a display: scripts/with-desktop --private build/bench/bin/soak-deliveries
#include "apps/demo/HostClient.h"
#include "apps/support/ChildProcess.h"
#include "apps/support/CommandLine.h"

#include <CLI/CLI.hpp>
#include <sndfile.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace
{

constexpr std::chrono::minutes kPatience{3};
constexpr int kFrames = 480;

// Resident memory that is the process's own, in KiB.
long OwnMemory(pid_t pid)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string strLine; std::getline(status, strLine);)
    {
        if (strLine.rfind("RssAnon:", 0) == 0)
            return std::stol(strLine.substr(8));
    }
    throw std::runtime_error("process " + std::to_string(pid) + " has ended");
}

void WriteSound(const fs::path& path)
{
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* pFile = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!pFile)
        throw std::runtime_error(sf_strerror(nullptr));
    const std::vector<short> frames(kFrames, 1000);
    sf_write_short(pFile, frames.data(), kFrames);
    sf_close(pFile);
}

// A folder that goes with the object.
struct Scratch
{
    Scratch()
    {
        std::string strTemplate = (fs::temp_directory_path() / "tarvane-soak-XXXXXX").string();
        if (!mkdtemp(strTemplate.data()))
            throw std::runtime_error("cannot make a temporary folder");
        path = strTemplate;
    }
    ~Scratch()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    fs::path path;
};

// Returns whether the host's memory stayed within the allowance after the first fifth, in which
// caches fill.
bool Soak(int nDeliveries, long nAllowance)
{
    const Scratch scratch;
    const fs::path sound = scratch.path / "take.wav";
    WriteSound(sound);
    const fs::path programs = Tarvane::ProgramFolder();
    Tarvane::CChildProcess server({programs / "tarvane-server", "--session",
                                   scratch.path / "session.tarvane", "--track", "Dialogue",
                                   "--link-offset", "2"});
    if (!server.WaitForLine("ready", kPatience))
        throw std::runtime_error("the server did not start: " + server.ErrorOutput());
    Tarvane::CHostClient host({programs / "tarvane-host", "--speed", "max", "--capture-folder",
                               scratch.path / "captures"});

    long nSettled = 0;
    long nLast = 0;
    std::printf("%10s %14s %14s\n", "deliveries", "host KiB", "server KiB");
    for (int n = 1; n <= nDeliveries; ++n)
    {
        const nlohmann::json answer = host.Capture(sound, double(n) * kFrames, kPatience);
        if (answer["outcome"] != "delivered")
            throw std::runtime_error("a capture was not delivered: " + answer.dump());
        fs::remove(answer["dub"].get<std::string>());
        if (n % std::max(1, nDeliveries / 10) != 0)
            continue;
        nLast = OwnMemory(host.Process().Pid());
        if (n <= nDeliveries / 5)
            nSettled = nLast;
        std::printf("%10d %14ld %14ld\n", n, nLast, OwnMemory(server.Pid()));
        std::fflush(stdout);
    }
    const long nGrowth = nLast - nSettled;
    std::printf("The host grew by %ld KiB over the last four fifths; %ld KiB are allowed.\n",
                nGrowth, nAllowance);
    return nGrowth <= nAllowance;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Delivers captures by the thousand and watches the memory of host and server.");
    int nDeliveries = 10000;
    long nAllowance = 4096;
    app.add_option("--deliveries", nDeliveries, "How many (default 10000)")
        ->check(CLI::Range(10, 10000000));
    app.add_option("--allow", nAllowance, "Growth of the host that counts as noise, KiB")
        ->check(CLI::NonNegativeNumber);
    CLI11_PARSE(app, argc, argv);
    try
    {
        return Soak(nDeliveries, nAllowance) ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "soak-deliveries: %s\n", error.what());
        return 2;
    }
}
