#include "apps/server/SessionExchange.h"

#include "apps/server/database/SessionStore.h"
#include "apps/server/session/SessionBlocks.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"

namespace Tarvane::Server
{

CSession LoadOrComplain(CSessionStore& store)
{
    try
    {
        if (std::optional<CSession> session = store.Load())
            return *std::move(session);
    }
    catch (const CSessionFlaw& flaw)
    {
        throw CUsageError(flaw.what());
    }
    catch (const CSessionTooNew& version)
    {
        throw CUsageError(version.what());
    }
    throw CUsageError("there is no session file " + store.File().string());
}

namespace
{

void RequireNew(const std::filesystem::path& file)
{
    if (std::filesystem::exists(std::filesystem::symlink_status(file)))
        throw CUsageError(file.string() + " is there already; name a new file");
}

} // namespace

int ExportSession(const Options& options, std::size_t nMost)
{
    RequireNew(options.strExportFile);
    CSessionStore store(options.strSessionFile);
    const std::string strBytes = EncodeSession(LoadOrComplain(store));
    if (strBytes.size() > nMost)
        throw std::runtime_error("it would be larger than " + std::to_string(nMost >> 20) +
                                 " MiB, and could not be imported again");
    ReplaceFile(options.strExportFile, strBytes);
    return kExitDone;
}

int ImportSession(const Options& options)
{
    CSessionStore store(options.strSessionFile);
    RequireNew(store.File());
    CSessionStore source(options.strImportFile);
    const CSession session = LoadOrComplain(source);
    store.Lock();
    RequireNew(store.File());
    store.Save(session);
    return kExitDone;
}

} // namespace Tarvane::Server
