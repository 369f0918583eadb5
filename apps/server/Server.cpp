#include "apps/server/Server.h"

#include "apps/server/SessionExchange.h"
#include "apps/server/command/CommandQueue.h"
#include "apps/server/command/EditorFeed.h"
#include "apps/server/database/SessionCheck.h"
#include "apps/server/database/SessionDatabase.h"
#include "apps/server/event/EventHandler.h"
#include "apps/server/event/EventLog.h"
#include "apps/server/loop/EndSignals.h"
#include "apps/server/loop/ServerLoop.h"
#include "apps/server/session/SessionListing.h"
#include "apps/server/sound/RenderFolder.h"
#include "apps/support/process/Pipe.h"
#include "apps/support/program/CommandLine.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

void RequireAgreement(const std::vector<Track>& tracks, double dLinkOffset, const Options& options,
                      const std::filesystem::path& file)
{
    std::vector<std::string> names;
    for (const Track& track : tracks)
        names.push_back(track.strName);
    const char* szConflict = nullptr;
    if (!options.trackNames.empty() && options.trackNames != names)
        szConflict = "--track";
    if (options.linkOffset && *options.linkOffset != dLinkOffset)
        szConflict = "--link-offset";
    if (szConflict != nullptr)
        throw CUsageError("the session " + file.string() + " exists and says otherwise than " +
                          szConflict + ", which is for new sessions; leave the option out to " +
                          "continue this session, or name another file");
}

CSession NewSession(const Options& options)
{
    return CSession(options.trackNames, options.linkOffset.value_or(0.0));
}

// Whoever starts a server wants to work.
void BeginAnew(CSessionStore& store, const Options& options, const std::string& strFlaw)
{
    std::cerr << "tarvane-server: " << strFlaw << "; it is kept as " << store.KeepFlawed().string()
              << ", and a new session begins" << std::endl;
    store.Save(NewSession(options));
}

void GoOn(const CSessionStore& store, const Options& options)
{
    if (access(store.File().c_str(), W_OK) != 0)
        throw std::system_error(errno, std::generic_category(),
                                "cannot write " + store.File().string());
    CSessionDatabase database(store.File());
    RequireAgreement(database.Tracks(DocumentKind::Script), database.LinkOffset(), options,
                     store.File());
}

void TakeOver(CSessionStore& store, const Options& options)
{
    const CSession session = store.Load().value();
    RequireAgreement(session.GetDocument(DocumentKind::Script).tracks, session.LinkOffset(),
                     options, store.File());
    const std::filesystem::path kept = store.KeepEarlier();
    store.Save(session);
    std::cerr << "tarvane-server: the session file " << store.File().string()
              << " was of an earlier form; it is a database from now on, and the earlier one is "
                 "kept as "
              << kept.string() << std::endl;
}

// What the editor has not had yet.
void BringUpToDate(const std::string& strEditor, const CSessionStore& store)
{
    CSessionDatabase session(store.File());
    CEditorFeed(Editor::MakeEditor(strEditor)).Begin(session);
}

int PrintListing(const Options& options)
{
    CSessionStore store(options.strListedFile);
    const CSession session = LoadOrComplain(store);
    std::cout << (options.fJson ? ListSessionAsJson(session) : ListSession(session));
    std::cout.flush();
    if (!std::cout)
        throw std::runtime_error("the listing could not be written");
    return kExitDone;
}

std::filesystem::path NewPrivateFolder(const std::string& strWhat)
{
    std::string strNew =
        (std::filesystem::temp_directory_path() / "tarvane-server-XXXXXX").string();
    if (mkdtemp(strNew.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), "cannot make " + strWhat);
    return strNew;
}

// A folder into which nobody else can put anything.
std::filesystem::path PrivateFolder()
{
    for (const auto& [szVariable, szBelow] : {std::pair{"XDG_STATE_HOME", "tarvane-server"},
                                              std::pair{"HOME", ".local/state/tarvane-server"}})
    {
        const char* const szFolder = std::getenv(szVariable);
        if (szFolder != nullptr && szFolder[0] == '/')
            return std::filesystem::path(szFolder) / szBelow;
    }
    return NewPrivateFolder("a folder for audio; name one with --render-folder");
}

// Where a session lives that nobody keeps, for as long as the object.
class CPassingFolder
{
public:
    CPassingFolder() : m_path(NewPrivateFolder("a folder for the session; name one with --session"))
    {
    }
    ~CPassingFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CPassingFolder(const CPassingFolder&) = delete;
    CPassingFolder& operator=(const CPassingFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

std::string FlawText(const CSessionStore& store, const std::string& strFlaw)
{
    return "the session file " + store.File().string() + " is flawed: " + strFlaw;
}

} // namespace

void OpenSession(CSessionStore& store, const Options& options)
{
    store.Lock();
    try
    {
        // A file that cannot be written is better found now than at the first take.
        if (!store.Exists())
            store.Save(NewSession(options));
        else if (store.IsDatabase())
            GoOn(store, options);
        else
            TakeOver(store, options);
    }
    catch (const CSessionFlaw& flaw)
    {
        BeginAnew(store, options, flaw.what());
    }
    catch (const CSessionTooNew& version)
    {
        throw CUsageError(version.what());
    }
}

std::filesystem::path RenderFolderFor(const CSessionStore& store, const Options& options)
{
    if (!options.strRenderFolder.empty())
        return std::filesystem::absolute(options.strRenderFolder);
    if (options.strSessionFile.empty())
        return PrivateFolder() / "audio";
    std::filesystem::path folder = store.File();
    return folder += ".audio";
}

int RunServer(const Options& options)
{
    if (!options.strListedFile.empty())
        return PrintListing(options);
    if (!options.strExportFile.empty())
        return ExportSession(options);
    if (!options.strImportFile.empty())
        return ImportSession(options);

    IgnoreBrokenPipes();
    CEndSignals signals;
    CServerLoop loop;
    std::optional<CPassingFolder> passing;
    if (options.strSessionFile.empty())
    {
        std::cerr << "tarvane-server: no --session: what clients send is not kept" << std::endl;
        passing.emplace();
    }
    CSessionStore store(passing ? passing->Path() / "session"
                                : std::filesystem::path(options.strSessionFile));

    CEventLog log(options.strLogFile);
    OpenSession(store, options);
    if (!options.strEditor.empty())
        BringUpToDate(options.strEditor, store);
    const CRenderFolder renderFolder(RenderFolderFor(store, options));
    renderFolder.RemoveUnfinished();
    const auto settings = [&]
    {
        return WorkerSettings{store.File(),
                              IdentityOf(store.File()),
                              renderFolder.Path(),
                              !options.fNoDocument,
                              {},
                              {options.fReadOnly, options.fNoDelete},
                              options.strEditor};
    };
    CCommandQueue queue(settings());
    const CSessionCheck check(store.File(),
                              [&](const std::optional<std::string>& flaw)
                              {
                                  if (flaw)
                                      queue.StartOver(
                                          [&]
                                          {
                                              BeginAnew(store, options, FlawText(store, *flaw));
                                              return settings();
                                          });
                                  queue.LetChanges();
                              });
    queue.HoldChanges();
    const std::chrono::milliseconds delay(std::llround(options.dDelay * 1000));
    CMisbehaviour misbehaviour(options.faults, options.seed);
    if (misbehaviour.StartsSlowly())
        signals.WaitFor(delay);
    CEventHandler handler(
        queue, log, std::move(misbehaviour),
        {[&signals] { signals.Wait(); }, [&signals, delay] { signals.WaitFor(delay); }});
    handler.Install();
    std::cout << "ready" << std::endl;
    loop.RunUntilEnd(signals);
    return kExitDone;
}

} // namespace Tarvane::Server
