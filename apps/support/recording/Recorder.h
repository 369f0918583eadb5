// A recording on its way to its file; docs/recordings.md tells what the file holds.
#pragma once

#include "apps/support/recording/EventWatch.h"
#include "apps/support/recording/PropertyLines.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Tarvane
{

/// All operations: any thread. Lines stand in the file in the order of their times, each whole.
class CRecorder : public CEventWatcher
{
public:
    /// Creates the file and writes the first line; the thread that does so is the main one. Throws
    /// CUsageError when the file cannot be created, or is there already.
    CRecorder(const std::string& strFile, const std::string& strProgram);
    /// Writes what is left.
    ~CRecorder() override;
    CRecorder(const CRecorder&) = delete;
    CRecorder& operator=(const CRecorder&) = delete;

    /// These return when the line is in the file, so that the end of the process takes none away.
    /// An event that has no reply for kLongWait is named in a line of its own.
    void Add(const SeenEvent& event) override;
    void Add(const SeenReply& reply) override;

    /// Waits for no disk: another thread writes the line. What repeats what has been seen in the
    /// second before is counted into one line, which then comes at that second's end, or before the
    /// next line of another kind.
    void Add(SeenProperty seen);

    static constexpr std::chrono::seconds kLongWait{2};

    bool IsMainThread() const { return std::this_thread::get_id() == m_mainThread; }

private:
    using Clock = std::chrono::steady_clock;

    /// Something that has been seen, and how often again.
    struct Seen
    {
        SeenProperty property;
        std::size_t nRepeats = 0;
        long long nFirst = 0, nLast = 0; ///< of the repeats, microseconds
    };

    /// An event whose reply has not come.
    struct Open
    {
        UInt32 nNumber;
        long long nSince; ///< microseconds
        bool fTold = false;
    };

    void AddNow(const RecordedJson& line);
    long long Now() const;
    void Append(long long nTime, const RecordedJson& line);
    void Append(long long nTime, const std::string& strLine);
    void AppendWaiting();
    void AppendRepeats();
    void ForgetRepeats();
    bool IsRepeat(const SeenProperty& seen, long long nTime);
    void Work();
    void WriteWaiting();
    void Write(std::string_view bytes);

    const std::thread::id m_mainThread = std::this_thread::get_id();
    const Clock::time_point m_start = Clock::now();
    int m_nFile = -1;

    std::mutex m_fileMutex; ///< held while the file is written; taken before the other
    bool m_fBroken = false;

    std::mutex m_mutex; ///< never held while anything waits for the disk
    std::condition_variable m_wake;
    std::string m_strWaiting; ///< whole lines
    std::size_t m_nLost = 0;
    std::vector<Open> m_open;
    std::vector<Seen> m_seen;
    long long m_nSeenSince = 0;
    bool m_fEnding = false;

    std::thread m_writer;
};

} // namespace Tarvane
