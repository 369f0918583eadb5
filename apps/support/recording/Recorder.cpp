#include "apps/support/recording/Recorder.h"

#include "apps/support/program/CommandLine.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace Tarvane
{
namespace
{

constexpr long long kSecond = 1'000'000; // microseconds

// A disk that takes nothing must not fill the memory.
constexpr std::size_t kMostWaiting = 256u << 20;

// More than any view has in use; so the search among them stays short.
constexpr std::size_t kMostSeen = 64;

int Create(const std::string& strFile)
{
    const int nFile = ::open(strFile.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (nFile >= 0)
        return nFile;
    if (errno == EEXIST)
        throw CUsageError("there is a file " + strFile +
                          " already - remove it, or name another with --record.");
    throw CUsageError("cannot record in " + strFile + " (" +
                      std::generic_category().message(errno) +
                      ") - name another file with --record.");
}

std::string WallClock()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    char szSeconds[32], szText[64];
    std::strftime(szSeconds, sizeof szSeconds, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(szText, sizeof szText, "%s.%06ldZ", szSeconds, now.tv_nsec / 1000);
    return szText;
}

} // namespace

CRecorder::CRecorder(const std::string& strFile, const std::string& strProgram)
    : m_nFile(Create(strFile))
{
    const RecordedJson header{{"format", "tarvane-recording"},
                              {"version", 1},
                              {"started", WallClock()},
                              {"program", strProgram},
                              {"programVersion", TARVANE_VERSION}};
    Write(header.dump() + "\n");
    m_writer = std::thread([this] { Work(); });
}

CRecorder::~CRecorder()
{
    {
        const std::lock_guard lock(m_mutex);
        ForgetRepeats();
        m_fEnding = true;
    }
    m_wake.notify_one();
    m_writer.join();
    WriteWaiting();
    ::close(m_nFile);
}

void CRecorder::Add(const SeenEvent& event)
{
    AddNow(EventLine(event));
    const std::lock_guard lock(m_mutex);
    m_open.push_back({event.nNumber, Now()});
}

void CRecorder::Add(const SeenReply& reply)
{
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_open, [&](const Open& open) { return open.nNumber == reply.nNumber; });
    }
    AddNow(ReplyLine(reply));
}

void CRecorder::AddNow(const RecordedJson& line)
{
    // Long texts take their time, during which no notification is to wait.
    const std::string strLine = line.dump();
    {
        const std::lock_guard lock(m_mutex);
        ForgetRepeats();
        Append(Now(), strLine);
    }
    WriteWaiting();
}

void CRecorder::Add(SeenProperty seen)
{
    {
        const std::lock_guard lock(m_mutex);
        const long long nTime = Now();
        if (IsRepeat(seen, nTime))
            return;
        AppendRepeats();
        Append(nTime, PropertyLine(seen));
        if (m_seen.empty())
            m_nSeenSince = nTime;
        m_seen.push_back({std::move(seen)});
    }
    m_wake.notify_one();
}

bool CRecorder::IsRepeat(const SeenProperty& seen, long long nTime)
{
    if (seen.kind == SeenProperty::Kind::Write || m_seen.size() == kMostSeen ||
        nTime - m_nSeenSince > kSecond)
        ForgetRepeats();
    const auto found =
        std::find_if(m_seen.begin(), m_seen.end(),
                     [&](const Seen& before) { return seen.IsRepeatOf(before.property); });
    if (found == m_seen.end())
        return false;
    if (found->nRepeats++ == 0)
        found->nFirst = nTime;
    found->nLast = nTime;
    found->property.strBytes = seen.strBytes;
    return true;
}

void CRecorder::AppendWaiting()
{
    constexpr long long kLong = std::chrono::microseconds(kLongWait).count();
    for (Open& open : m_open)
    {
        if (open.fTold || Now() - open.nSince < kLong)
            continue;
        open.fTold = true;
        ForgetRepeats();
        Append(Now(), RecordedJson{{"kind", "waiting"}, {"number", open.nNumber}});
    }
}

void CRecorder::AppendRepeats()
{
    std::vector<Seen*> repeated;
    for (Seen& seen : m_seen)
    {
        if (seen.nRepeats > 0)
            repeated.push_back(&seen);
    }
    std::sort(repeated.begin(), repeated.end(),
              [](const Seen* pOne, const Seen* pOther) { return pOne->nFirst < pOther->nFirst; });
    for (Seen* const pSeen : repeated)
    {
        RecordedJson line = PropertyLine(pSeen->property);
        line["count"] = pSeen->nRepeats;
        line["last"] = pSeen->nLast;
        Append(pSeen->nFirst, line);
        pSeen->nRepeats = 0;
    }
}

void CRecorder::ForgetRepeats()
{
    AppendRepeats();
    m_seen.clear();
}

long long CRecorder::Now() const
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - m_start).count();
}

void CRecorder::Append(long long nTime, const RecordedJson& line)
{
    Append(nTime, line.dump());
}

void CRecorder::Append(long long nTime, const std::string& strLine)
{
    if (m_strWaiting.size() + strLine.size() > kMostWaiting)
    {
        ++m_nLost;
        return;
    }
    if (m_nLost > 0)
    {
        m_strWaiting += "{\"time\":" + std::to_string(nTime) +
                        ",\"kind\":\"lost\",\"count\":" + std::to_string(m_nLost) + "}\n";
        m_nLost = 0;
    }
    m_strWaiting += "{\"time\":" + std::to_string(nTime) + ",";
    m_strWaiting.append(strLine, 1) += "\n";
}

void CRecorder::Work()
{
    std::unique_lock lock(m_mutex);
    while (!m_fEnding)
    {
        m_wake.wait_for(lock, std::chrono::seconds(1),
                        [this] { return m_fEnding || !m_strWaiting.empty(); });
        if (!m_seen.empty() && Now() - m_nSeenSince > kSecond)
            ForgetRepeats();
        AppendWaiting();
        lock.unlock();
        WriteWaiting();
        lock.lock();
    }
}

void CRecorder::WriteWaiting()
{
    const std::lock_guard fileLock(m_fileMutex);
    std::string strLines;
    {
        const std::lock_guard lock(m_mutex);
        strLines.swap(m_strWaiting);
    }
    Write(strLines);
}

void CRecorder::Write(std::string_view bytes)
{
    const off_t nWhole = ::lseek(m_nFile, 0, SEEK_CUR);
    while (!bytes.empty() && !m_fBroken)
    {
        const ssize_t nWritten = ::write(m_nFile, bytes.data(), bytes.size());
        if (nWritten >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(nWritten));
        else if (errno != EINTR)
            m_fBroken = true;
        if (m_fBroken)
        {
            // What was asked for goes on; only its recording ends, with a whole line.
            std::fprintf(stderr, "the recording ends here: it cannot be written (%s)\n",
                         std::strerror(errno));
            (void)!::ftruncate(m_nFile, nWhole);
        }
    }
}

} // namespace Tarvane
