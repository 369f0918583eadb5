#include "apps/server/database/SessionCheck.h"

#include "apps/server/database/SessionDatabase.h"

#include <cstdio>
#include <exception>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

// Through the pipe: a point when nobody else can change the session, then the flaw, if there is
// one, on a line.
void Write(int nPipe, const std::string& strText)
{
    [[maybe_unused]] const ssize_t nWritten = write(nPipe, strText.data(), strText.size());
}

// Nobody is to add to a flawed session until the server, which ends this process, has taken it out
// of use.
void TellAndStay(int nPipe, const std::string& strFlaw)
{
    Write(nPipe, strFlaw + "\n");
    for (;;)
        pause();
}

void Check(const std::filesystem::path& file, int nPipe)
try
{
    CSessionDatabase database(file);
    const auto flaw =
        database.Flaw([nPipe] { Write(nPipe, "."); },
                      [nPipe](const std::string& strFlaw) { TellAndStay(nPipe, strFlaw); });
    // One that leaves nothing to lock.
    if (flaw)
        Write(nPipe, "." + *flaw + "\n");
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "tarvane-server: the session %s could not be checked: %s\n", file.c_str(),
                 error.what());
}

} // namespace

CSessionCheck::CSessionCheck(const std::filesystem::path& file,
                             std::function<void(const std::optional<std::string>&)> done)
    : m_done(std::move(done))
{
    m_process.emplace(CSideProcess::Calls{[file](int nPipe) { Check(file, nPipe); },
                                          [this](std::string_view bytes) { Told(bytes); },
                                          [this] { Conclude(std::nullopt); }});
    m_process->WaitForByte();
}

void CSessionCheck::Told(std::string_view bytes)
{
    m_strFlaw += bytes;
    if (m_strFlaw.ends_with('\n'))
        Conclude(m_strFlaw.substr(0, m_strFlaw.size() - 1));
}

void CSessionCheck::Conclude(const std::optional<std::string>& flaw)
{
    m_process.reset();
    const auto done = std::exchange(m_done, nullptr);
    done(flaw);
}

} // namespace Tarvane::Server
