#include "apps/server/command/ReadAhead.h"

#include "apps/server/sound/Fingerprinting.h"

#include <cstring>
#include <exception>
#include <system_error>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

constexpr int kLowestPriority = 19; // of the disk as well

bool Tell(int nPipe, std::int64_t nRegionId)
{
    return write(nPipe, &nRegionId, sizeof nRegionId) == ssize_t(sizeof nRegionId);
}

// Which region comes next is told before it is read: one that brings the process down is passed
// over the next time.
void ReadRegionsAfter(std::int64_t nRegionId, const WorkerSettings& settings, int nPipe)
try
{
    [[maybe_unused]] const int nPriority = nice(kLowestPriority);
    CServedSession session(settings.sessionFile, settings.identity, getppid());
    CSessionDatabase* const pDatabase = session.Database();
    if (pDatabase == nullptr)
        return;
    while (const std::optional<Region> region = pDatabase->NextRegion(nRegionId))
    {
        nRegionId = region->nId;
        if (!Tell(nPipe, nRegionId))
            return;
        if (region->Length() <= kLongStretch)
            continue;
        FingerprintOf(*pDatabase, *region);
        if (!session.IsOurs())
            return;
        pDatabase->SaveFingerprints();
    }
}
catch (const std::exception&)
{
    // Such as a session that another process has locked for long.
}

} // namespace

CReadAhead::CReadAhead(const WorkerSettings& settings, std::chrono::milliseconds pause)
    : m_settings(settings), m_pause(pause),
      m_nLastRegion(CSessionDatabase(settings.sessionFile).NextId() - 1)
{
}

void CReadAhead::Changed(const FileIdentity& identity)
try
{
    m_settings.identity = identity;
    if (!m_timer)
        m_timer.emplace([this] { Begin(); });
    m_timer->Set(m_pause);
}
catch (const std::system_error&)
{
    // No descriptor is left; the next change tries again.
}

void CReadAhead::Begin()
try
{
    if (m_process)
    {
        m_timer->Set(m_pause);
        return;
    }
    m_strTold.clear();
    m_process.emplace(CSideProcess::Calls{
        [this](int nPipe) { ReadRegionsAfter(m_nLastRegion, m_settings, nPipe); },
        [this](std::string_view bytes) { Told(bytes); }, [this] { m_process.reset(); }});
}
catch (const std::system_error&)
{
    // The machine has other things to do.
}

void CReadAhead::Told(std::string_view bytes)
{
    m_strTold += bytes;
    const std::size_t nWhole = m_strTold.size() / sizeof m_nLastRegion * sizeof m_nLastRegion;
    if (nWhole == 0)
        return;
    std::memcpy(&m_nLastRegion, m_strTold.data() + nWhole - sizeof m_nLastRegion,
                sizeof m_nLastRegion);
    m_strTold.erase(0, nWhole);
}

} // namespace Tarvane::Server
