// Audacity's script pipe, which its module mod-script-pipe makes: two FIFOs, commands in one and
// replies in the other, one after the other.
//
//   > Import2: Filename="/takes/take.wav"\n
//   < (lines of text)\nBatchCommand finished: OK\n\n         or "Failed!"
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

namespace Tarvane::Editor
{

using Deadline = std::chrono::steady_clock::time_point;

/// One connection. One thread at a time.
class CAudacityPipe
{
public:
    /// Bytes of a command. Audacity takes what is longer for two.
    static constexpr std::size_t kLongestCommand = 1000;

    /// Connects to the Audacity whose FIFOs are in the folder. Until "there" it may be away: it
    /// makes its FIFOs anew whenever a program has closed them. When this returns it answers, and
    /// has done with all that it was ever told before. Throws CEditorError.
    CAudacityPipe(const std::filesystem::path& folder, Deadline there, Deadline deadline);
    ~CAudacityPipe();
    CAudacityPipe(const CAudacityPipe&) = delete;
    CAudacityPipe& operator=(const CAudacityPipe&) = delete;

    /// Has the command done and returns what Audacity says beside. Waits until the deadline, which
    /// one changes with Until. Throws CEditorError for a command that fails, that is not answered
    /// in time, or whose answer does not come any more.
    std::string Ask(const std::string& strCommand);
    void Until(Deadline deadline) { m_deadline = deadline; }

    /// False once an answer was not had: what Audacity does then is not known until a new
    /// connection is there.
    bool IsAnswering() const { return m_fAnswering; }

    /// The files that those have open who read the commands.
    std::set<std::filesystem::path> OpenFilesThere() const;

    /// A value of a command. Control characters, which no command can hold, become '_'.
    static std::string Quoted(const std::string& strText);

private:
    void Connect(Deadline there);
    void Open();
    void Close();
    void Greet();
    /// Replies are told apart by their order alone.
    void RequireNothingMore();
    void Send(const std::string& strCommand);
    /// The whole next reply. Throws CEditorError.
    std::string Receive();
    void ReadMore();

    const std::filesystem::path m_to;
    const std::filesystem::path m_from;
    Deadline m_deadline;
    int m_nTo = -1;
    int m_nFrom = -1;
    bool m_fAnswering = false;
    std::string m_strRead; ///< no whole reply yet
};

} // namespace Tarvane::Editor
