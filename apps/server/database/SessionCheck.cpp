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
// one.
void Write(int nPipe, const std::string& strText)
{
    [[maybe_unused]] const ssize_t nWritten = write(nPipe, strText.data(), strText.size());
}

void Check(const std::filesystem::path& file, int nPipe)
try
{
    CSessionDatabase database(file);
    Write(nPipe, database.Flaw([nPipe] { Write(nPipe, "."); }).value_or(""));
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "tarvane-server: the session %s could not be checked: %s\n", file.c_str(),
                 error.what());
}

} // namespace

CSessionCheck::CSessionCheck(const std::filesystem::path& file,
                             std::function<void(const std::optional<std::string>&)> done)
    : m_done(std::move(done)),
      m_process({[file](int nPipe) { Check(file, nPipe); },
                 [this](std::string_view bytes) { m_strFlaw += bytes; }, [this] { Conclude(); }})
{
    m_process.WaitForByte();
}

void CSessionCheck::Conclude()
{
    const auto done = std::exchange(m_done, nullptr);
    done(m_strFlaw.empty() ? std::nullopt : std::optional(m_strFlaw));
}

} // namespace Tarvane::Server
