// bench-server: what a command costs the server in sessions of 100, 10,000 and 1,000,000 regions.
// Needs a bus of its own. Interleaved, so that a machine whose pace changes is the same to both
// sides of a ratio:
//
//     scripts/with-desktop --private build/bench/bin/bench-server \
//         --benchmark_repetitions=15 --benchmark_enable_random_interleaving=true
//
// Commands go to a worker, without the bus, whose cost is the same for every session (bench-link
// has it). A delivery is the three commands of the view: the question for duplicates, which finds
// none, the offset, and the region with the display's move. Beside it stands the same row put into
// the same tables by SQLite alone, and synced. The question for duplicates finds its region's place
// taken, by other audio in another file, and reads both.
#include "apps/server/command/CommandQueue.h"
#include "apps/server/database/SessionStore.h"
#include "apps/support/process/ChildProcess.h"
#include "bench/support/Measure.h"

#include <CoreFoundation/CoreFoundation.h>
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <poll.h>
#include <sndfile.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using namespace Tarvane::Server;

namespace
{

constexpr std::int64_t kFew = 100, kMany = 1'000'000;
constexpr int kTracks = 100;
constexpr int kDeliveries = 20; // a repetition
constexpr int kQuestions = 100;
constexpr int kClients = 8;
constexpr int kOfAClient = 50; // commands
constexpr std::int64_t kTakeFrames = 4800;
constexpr std::int64_t kMostMemory = std::int64_t(64) << 20;

class CFolder
{
public:
    CFolder()
    {
        std::string strTemplate = (fs::temp_directory_path() / "tarvane-bench-XXXXXX").string();
        if (mkdtemp(strTemplate.data()) == nullptr)
            throw std::runtime_error("cannot make a temporary folder");
        m_path = strTemplate;
    }
    ~CFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    CFolder(const CFolder&) = delete;
    CFolder& operator=(const CFolder&) = delete;

    const fs::path& Path() const { return m_path; }

private:
    fs::path m_path;
};

std::string MakeTake(const fs::path& file, short nLevel)
{
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* pFile = sf_open(file.c_str(), SFM_WRITE, &info);
    const std::vector<short> frames(kTakeFrames, nLevel);
    sf_write_short(pFile, frames.data(), kTakeFrames);
    sf_close(pFile);
    return file;
}

// So many regions of one take, one behind the other on all tracks by turns.
CSession SessionOf(std::int64_t nRegions, const std::string& strTake)
{
    Document document;
    std::int64_t nNextId = 1;
    for (int nTrack = 0; nTrack < kTracks; nTrack++)
        document.tracks.push_back({nNextId++, "Track " + std::to_string(nTrack)});
    document.regions.reserve(static_cast<std::size_t>(nRegions));
    for (std::int64_t n = 0; n < nRegions; n++)
    {
        Region region;
        region.nId = nNextId++;
        region.nTrackId = 1 + n % kTracks;
        region.strPath = strTake;
        region.nEnd = kTakeFrames;
        region.nPosition = n * kTakeFrames;
        region.nSampleRate = 48000;
        document.regions.push_back(std::move(region));
    }
    return CSession::Restore({std::move(document), Document()}, 2.0, nRegions, nNextId);
}

// A session of so many regions, a worker on it, and SQLite alone on a copy of it.
class CSubject
{
public:
    CSubject(const fs::path& folder, std::int64_t nRegions, const std::string& strTake,
             const std::string& strOther)
        : m_file(folder / ("session-" + std::to_string(nRegions))), m_strTake(strTake),
          m_strOther(strOther)
    {
        CSessionStore(m_file).Save(SessionOf(nRegions, strTake));
        const fs::path copy = m_file.string() + "-copy";
        fs::copy_file(m_file, copy);
        m_pWorker = std::make_unique<CScriptWorker>(
            WorkerSettings{m_file, IdentityOf(m_file), folder / "made", true, {}, {}});
        m_pAlone = std::make_unique<SQLite::Database>(copy.string(), SQLite::OPEN_READWRITE);
        m_pAlone->exec("PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON");
        m_pInsert = std::make_unique<SQLite::Statement>(
            *m_pAlone, "INSERT INTO regions VALUES(NULL, 1, ?, 0, 4800, ?, 48000, '', 0)");
    }

    const fs::path& File() const { return m_file; }

    void Deliver()
    {
        const std::string strPlace = std::to_string(Place());
        const std::string strSelect = "if SelectScriptDocument() then\n";
        Run(strSelect + "print(CheckForDuplicateRegion(1, \"" + m_strTake + "\", " + strPlace +
            ", 0, 4800))\nend\n");
        Run(strSelect + "print(GetLinkSMPTEOffset())\nend\n");
        Run(strSelect + "AddAudioRegion(1, \"" + m_strTake + "\", true, false, " + strPlace +
            ", 0, 4800)\nMoveDisplayToPosition(" + strPlace + ")\nend\n");
    }
    void InsertAlone()
    {
        SQLite::Transaction transaction(*m_pAlone);
        m_pInsert->bind(1, m_strTake);
        m_pInsert->bind(2, Place());
        m_pInsert->exec();
        m_pInsert->reset();
        transaction.commit();
    }
    void List()
    {
        Run("if SelectScriptDocument() then\nfor n = 0, GetTrackCount() - 1 do\n"
            "print(GetTrackID(n))\nprint(GetTrackName(GetTrackID(n)))\nend\nend\n");
    }
    // The session's offset is two seconds; the region is the twenty-first of its track.
    void AskForDuplicate()
    {
        Run("SelectScriptDocument() print(CheckForDuplicateRegion(21, \"" + m_strOther + "\", " +
            std::to_string(20 * kTakeFrames - 96000) + ", 0, 4800))");
    }

private:
    // Free, beyond all regions, and anywhere.
    std::int64_t Place() { return kMany * kTakeFrames + (m_nPlace += 1'000'003) % 1'000'000'007; }

    void Run(const std::string& strScript)
    {
        m_pWorker->Begin(strScript, {});
        for (;;)
        {
            pollfd wanted{m_pWorker->Descriptor(), POLLIN, 0};
            poll(&wanted, 1, -1);
            if (const std::optional<WorkerReport> report = m_pWorker->Receive())
            {
                if (!report->execution.reply.strError.empty())
                    throw std::runtime_error(report->execution.reply.strError);
                return;
            }
        }
    }

    fs::path m_file;
    std::string m_strTake, m_strOther;
    std::unique_ptr<CScriptWorker> m_pWorker;
    std::unique_ptr<SQLite::Database> m_pAlone;
    std::unique_ptr<SQLite::Statement> m_pInsert;
    std::int64_t m_nPlace = 0;
};

// All commands of so many clients, each of which has all of its own waiting.
void RunClients(CCommandQueue& queue, int nClients, const std::string& strTake)
{
    int nLeft = kClients * kOfAClient;
    for (int n = 0; n < kClients * kOfAClient; n++)
    {
        Command command;
        command.nClient = 1 + n % nClients;
        command.strScript = "SelectScriptDocument() AddAudioRegion(1, \"" + strTake +
                            "\", false, false, " + std::to_string(n) + ", 0, 4800)";
        command.begin = [] { return Trouble{}; };
        command.end = [&nLeft](const CommandReply& reply)
        {
            if (!reply.fChanged)
                throw std::runtime_error(reply.strError);
            nLeft--;
        };
        queue.Add(std::move(command));
    }
    while (nLeft > 0)
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1, true);
}

using Server = std::unique_ptr<Tarvane::CChildProcess>;

Server StartServer(const fs::path& session)
{
    auto server = std::make_unique<Tarvane::CChildProcess>(std::vector<std::string>{
        Tarvane::ProgramFolder() / "tarvane-server", "--session", session});
    if (!server->WaitForLine("ready", std::chrono::minutes(1)))
        throw std::runtime_error("the server is not ready: " + server->ErrorOutput());
    return server;
}

void RegisterStart(const std::string& strName, const fs::path& session)
{
    const auto server = std::make_shared<Server>();
    Bench::Register(strName,
                    {[] {}, [=] { *server = StartServer(session); }, [=] { server->reset(); }}, 1);
}

// Of the process and its children, what is resident and its own, in bytes.
std::int64_t MemoryOf(pid_t nProcess)
{
    std::int64_t nAll = 0;
    std::ifstream rollup("/proc/" + std::to_string(nProcess) + "/smaps_rollup");
    for (std::string strWord; rollup >> strWord;)
    {
        std::int64_t nKilobytes = 0;
        if (strWord == "Pss:" && rollup >> nKilobytes)
            nAll += nKilobytes << 10;
    }
    const std::string strProcess = std::to_string(nProcess);
    std::ifstream children("/proc/" + strProcess + "/task/" + strProcess + "/children");
    for (pid_t nChild = 0; children >> nChild;)
        nAll += MemoryOf(nChild);
    return nAll;
}

} // namespace

int main(int argc, char** argv)
{
    const CFolder folder;
    const std::string strTake = MakeTake(folder.Path() / "take.wav", 1000);
    const std::string strOther = MakeTake(folder.Path() / "other.wav", 1001);
    std::vector<std::unique_ptr<CSubject>> subjects;
    for (const std::int64_t nRegions : {kFew, std::int64_t(10'000), kMany})
    {
        subjects.push_back(std::make_unique<CSubject>(folder.Path(), nRegions, strTake, strOther));
        CSubject* const pSubject = subjects.back().get();
        const std::string strOf = " of " + std::to_string(nRegions);
        const auto repeat = [](int nTimes, auto&& one)
        {
            return Bench::Steps{[] {},
                                [=]
                                {
                                    for (int n = 0; n < nTimes; n++)
                                        one();
                                },
                                [] {}};
        };
        Bench::Register("delivery" + strOf, repeat(kDeliveries, [=] { pSubject->Deliver(); }),
                        kDeliveries);
        Bench::Register("insert" + strOf, repeat(kDeliveries, [=] { pSubject->InsertAlone(); }),
                        kDeliveries);
        Bench::Register("listing" + strOf, repeat(kQuestions, [=] { pSubject->List(); }),
                        kQuestions);
        Bench::Register("duplicate" + strOf,
                        repeat(kQuestions, [=] { pSubject->AskForDuplicate(); }), kQuestions);
        // What is not SQLite's own insert and sync takes half as long again at most.
        Bench::Expect("delivery" + strOf, "insert" + strOf, 2.5);
        if (nRegions != kFew)
        {
            for (const std::string strWhat : {"delivery", "listing", "duplicate"})
                Bench::Expect(strWhat + strOf, strWhat + " of " + std::to_string(kFew), 1.3);
        }
    }

    const fs::path shared = folder.Path() / "shared";
    CSessionStore(shared).Save(SessionOf(kFew, strTake));
    CCommandQueue queue({shared, IdentityOf(shared), folder.Path() / "made", true, {}, {}});
    for (const int nClients : {1, kClients})
        Bench::Register(
            "by clients " + std::to_string(nClients),
            {[] {}, [&queue, &strTake, nClients] { RunClients(queue, nClients, strTake); }, [] {}},
            kClients * kOfAClient);
    Bench::Expect("by clients 8", "by clients 1", 1.0);

    const fs::path none = folder.Path() / "none", many = folder.Path() / "many";
    CSessionStore(none).Save(CSession());
    CSessionStore(many).Save(SessionOf(kMany, strTake));
    RegisterStart("start of 0", none);
    RegisterStart("start of " + std::to_string(kMany), many);
    Bench::Expect("start of " + std::to_string(kMany), "start of 0", 3.0);
    {
        const Server server = StartServer(many);
        std::int64_t nMost = 0;
        // The check of the whole session, which begins with the start, is among it.
        for (int n = 0; n < 100; n++)
        {
            nMost = std::max(nMost, MemoryOf(server->Pid()));
            usleep(20'000);
        }
        Bench::ExpectCount("resident bytes of a server on 1000000", static_cast<std::size_t>(nMost),
                           static_cast<std::size_t>(kMostMemory));
    }
    return Bench::RunAll(argc, argv);
}
