#include "apps/editor/AudacityPipe.h"

#include "apps/editor/Editor.h"
#include "apps/editor/OpenFiles.h"
#include "apps/support/process/Pipe.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane::Editor
{

namespace
{

using std::chrono::milliseconds;

constexpr milliseconds kMoment{20};
constexpr std::size_t kLongestReply = std::size_t(1) << 24;
constexpr const char* szEnd = "BatchCommand finished: ";

// Nobody reads the commands.
class CNobodyThere : public CEditorError
{
public:
    CNobodyThere()
        : CEditorError("Audacity does not listen: it is not running, or its module "
                       "mod-script-pipe is not enabled (there under Preferences, Modules, and "
                       "then start it again).")
    {
    }
};

int Milliseconds(Deadline deadline)
{
    const auto left =
        std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, 1000));
}

int OpenFifo(const fs::path& file, int nFlags)
{
    const int nFile = open(file.c_str(), nFlags | O_NONBLOCK | O_CLOEXEC);
    if (nFile < 0 && errno != ENOENT && errno != ENXIO)
        throw CEditorError("cannot open " + file.string() + ": " + std::strerror(errno) + ".");
    struct stat status;
    if (nFile >= 0 && fstat(nFile, &status) == 0 && !S_ISFIFO(status.st_mode))
    {
        close(nFile);
        throw CEditorError(file.string() + " is not the pipe of an Audacity.");
    }
    return nFile;
}

} // namespace

CAudacityPipe::CAudacityPipe(const fs::path& folder, Deadline there, Deadline deadline)
    : m_to(folder / ("audacity_script_pipe.to." + std::to_string(getuid()))),
      m_from(folder / ("audacity_script_pipe.from." + std::to_string(getuid()))),
      m_deadline(deadline)
{
    IgnoreBrokenPipes();
    try
    {
        Connect(there);
    }
    catch (...)
    {
        Close();
        throw;
    }
}

CAudacityPipe::~CAudacityPipe()
{
    Close();
}

void CAudacityPipe::Connect(Deadline there)
{
    there = std::min(there, m_deadline);
    for (;;)
    {
        try
        {
            Open();
            Greet();
            return;
        }
        catch (const CNobodyThere&)
        {
            Close();
            if (std::chrono::steady_clock::now() >= there)
                throw;
        }
        std::this_thread::sleep_for(kMoment);
    }
}

void CAudacityPipe::Open()
{
    m_nFrom = OpenFifo(m_from, O_RDONLY);
    m_nTo = m_nFrom < 0 ? -1 : OpenFifo(m_to, O_WRONLY);
    if (m_nTo < 0)
        throw CNobodyThere();
    // Two of our programs at a time would get one another's replies.
    if (flock(m_nTo, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw CEditorError(
            "another program of Tarvane Link tells Audacity what to do just now; try "
            "again when it is done.");
}

void CAudacityPipe::Close()
{
    for (int* pFile : {&m_nTo, &m_nFrom})
    {
        if (*pFile >= 0)
            close(*pFile);
        *pFile = -1;
    }
    m_strRead.clear();
}

void CAudacityPipe::Greet()
{
    // A text that nobody else has sent: what comes before it answers what was asked before.
    static std::atomic<int> nGreetings{0};
    const std::string strGreeting =
        "tarvane-link " + std::to_string(getpid()) + "-" + std::to_string(++nGreetings);
    Send("Message: Text=" + Quoted(strGreeting));
    while (Receive().find(strGreeting + "\n" + szEnd) == std::string::npos)
        ;
    m_fAnswering = true;
}

std::string CAudacityPipe::Ask(const std::string& strCommand)
{
    if (strCommand.size() > kLongestCommand)
        throw CEditorError("a name is too long for Audacity: it takes commands of " +
                           std::to_string(kLongestCommand) + " bytes.");
    std::string strReply;
    try
    {
        RequireNothingMore();
        Send(strCommand);
        strReply = Receive();
    }
    catch (const CNobodyThere&)
    {
        m_fAnswering = false;
        throw CEditorError("Audacity ended, or closed its script pipe, before it was done.");
    }
    catch (const CEditorError&)
    {
        m_fAnswering = false;
        throw;
    }
    const std::size_t nEnd = strReply.rfind(szEnd);
    const std::string strText = strReply.substr(0, nEnd);
    if (strReply.compare(nEnd, std::string::npos, std::string(szEnd) + "OK\n\n") == 0)
        return strText;
    std::string strWhy = strText;
    std::replace(strWhy.begin(), strWhy.end(), '\n', ' ');
    throw CEditorError("Audacity did not do \"" + strCommand.substr(0, strCommand.find(':')) +
                       "\": " + strWhy);
}

void CAudacityPipe::RequireNothingMore()
{
    char byte;
    if (!m_strRead.empty() || read(m_nFrom, &byte, 1) > 0)
        throw CEditorError("Audacity answers what it was not asked; does another program use its "
                           "script pipe?");
}

void CAudacityPipe::Send(const std::string& strCommand)
{
    const std::string strLine = strCommand + "\n";
    for (;;)
    {
        const ssize_t nWritten = write(m_nTo, strLine.data(), strLine.size());
        if (nWritten == static_cast<ssize_t>(strLine.size()))
            return;
        if (nWritten >= 0 || (errno != EAGAIN && errno != EINTR))
            throw CNobodyThere();
        if (Milliseconds(m_deadline) == 0)
            throw CEditorError("Audacity does not read its script pipe.");
        std::this_thread::sleep_for(kMoment);
    }
}

std::string CAudacityPipe::Receive()
{
    for (;;)
    {
        // At the beginning of a line: what a command says may hold these words too.
        std::size_t nAt = m_strRead.find(szEnd);
        while (nAt != std::string::npos && nAt != 0 && m_strRead[nAt - 1] != '\n')
            nAt = m_strRead.find(szEnd, nAt + 1);
        const std::size_t nEnd =
            nAt == std::string::npos ? std::string::npos : m_strRead.find("\n\n", nAt);
        if (nEnd != std::string::npos)
        {
            const std::string strReply = m_strRead.substr(0, nEnd + 2);
            m_strRead.erase(0, nEnd + 2);
            return strReply;
        }
        if (m_strRead.size() > kLongestReply)
            throw CEditorError("what Audacity answers has no end.");
        ReadMore();
    }
}

void CAudacityPipe::ReadMore()
{
    for (;;)
    {
        pollfd files[] = {{m_nFrom, POLLIN, 0}, {m_nTo, 0, 0}};
        poll(files, 2, Milliseconds(m_deadline));
        char bytes[4096];
        const ssize_t nRead = read(m_nFrom, bytes, sizeof bytes);
        if (nRead > 0)
        {
            m_strRead.append(bytes, static_cast<std::size_t>(nRead));
            return;
        }
        // The other end of the replies is opened after that of the commands, and so may not be
        // there yet.
        if ((files[1].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0)
            throw CNobodyThere();
        if (Milliseconds(m_deadline) == 0)
            throw CEditorError("Audacity does not answer; perhaps it asks something in a window "
                               "of its own. Answer it there, and send the take again.");
        if (nRead == 0)
            std::this_thread::sleep_for(kMoment);
    }
}

std::set<fs::path> CAudacityPipe::OpenFilesThere() const
{
    const fs::path pipe = fs::canonical(m_to);
    std::set<fs::path> files;
    for (std::int64_t nProcess : RunningProcesses())
    {
        const std::set<fs::path> open =
            nProcess == getpid() ? std::set<fs::path>() : OpenFiles(nProcess);
        if (open.count(pipe) != 0)
            files.insert(open.begin(), open.end());
    }
    return files;
}

std::string CAudacityPipe::Quoted(const std::string& strText)
{
    std::string strQuoted = "\"";
    for (char c : strText)
    {
        if (c == '"' || c == '\\')
            strQuoted += '\\';
        strQuoted += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? '_' : c;
    }
    return strQuoted + "\"";
}

} // namespace Tarvane::Editor
