#include "apps/server/Server.h"

#include "apps/server/CommandProcessor.h"
#include "apps/server/EditorFeed.h"
#include "apps/server/EndSignals.h"
#include "apps/server/EventHandler.h"
#include "apps/server/EventLog.h"
#include "apps/server/ServerLoop.h"
#include "apps/server/SessionListing.h"
#include "apps/support/CommandLine.h"
#include "apps/support/Pipe.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

std::vector<std::string> TrackNames(const CSession& session)
{
    std::vector<std::string> names;
    for (const Track& track : session.GetDocument(DocumentKind::Script).tracks)
        names.push_back(track.strName);
    return names;
}

void RequireAgreement(const CSession& session, const Options& options, const std::string& strFile)
{
    const char* szConflict = nullptr;
    if (!options.trackNames.empty() && options.trackNames != TrackNames(session))
        szConflict = "--track";
    if (options.linkOffset && *options.linkOffset != session.LinkOffset())
        szConflict = "--link-offset";
    if (szConflict != nullptr)
        throw CUsageError("the session " + strFile + " exists and says otherwise than " +
                          szConflict + ", which is for new sessions; leave the option out to " +
                          "continue this session, or name another file");
}

// Empty as well for a flawed file, which is kept aside: whoever starts a server wants to work.
std::optional<CSession> LoadOrKeepAside(CSessionStore& store)
{
    try
    {
        return store.Load();
    }
    catch (const CSessionFlaw& flaw)
    {
        std::cerr << "tarvane-server: " << flaw.what() << "; it is kept as "
                  << store.KeepFlawed().string() << ", and a new session begins" << std::endl;
        return std::nullopt;
    }
    catch (const CSessionTooNew& version)
    {
        throw CUsageError(version.what());
    }
}

std::optional<CSession> LoadForListing(CSessionStore& store)
{
    try
    {
        return store.Load();
    }
    catch (const CSessionFlaw& flaw)
    {
        throw CUsageError(flaw.what());
    }
    catch (const CSessionTooNew& version)
    {
        throw CUsageError(version.what());
    }
}

int PrintListing(const Options& options)
{
    CSessionStore store(options.strListedFile);
    const std::optional<CSession> session = LoadForListing(store);
    if (!session)
        throw CUsageError("there is no session file " + options.strListedFile);
    std::cout << (options.fJson ? ListSessionAsJson(*session) : ListSession(*session));
    std::cout.flush();
    if (!std::cout)
        throw std::runtime_error("the listing could not be written");
    return kExitDone;
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
    std::string strNew =
        (std::filesystem::temp_directory_path() / "tarvane-server-XXXXXX").string();
    if (mkdtemp(strNew.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(),
                                "cannot make a folder for audio; name one with --render-folder");
    return strNew;
}

} // namespace

CSession OpenSession(CSessionStore* pStore, const Options& options)
{
    CSession fresh(options.trackNames, options.linkOffset.value_or(0.0));
    if (pStore == nullptr)
        return fresh;
    pStore->Lock();
    if (std::optional<CSession> existing = LoadOrKeepAside(*pStore))
    {
        RequireAgreement(*existing, options, pStore->File().string());
        if (pStore->HasEarlierForm())
            pStore->Save(*existing);
        return *std::move(existing);
    }
    // A file that cannot be written is better found now than at the first take.
    pStore->Save(fresh);
    return fresh;
}

std::filesystem::path RenderFolderFor(const CSessionStore* pStore, const Options& options)
{
    if (!options.strRenderFolder.empty())
        return std::filesystem::absolute(options.strRenderFolder);
    if (pStore == nullptr)
        return PrivateFolder() / "audio";
    std::filesystem::path folder = pStore->File();
    return folder += ".audio";
}

int RunServer(const Options& options)
{
    if (!options.strListedFile.empty())
        return PrintListing(options);

    IgnoreBrokenPipes();
    CEndSignals signals;
    CServerLoop loop;
    std::unique_ptr<CSessionStore> pStore;
    if (!options.strSessionFile.empty())
        pStore = std::make_unique<CSessionStore>(options.strSessionFile);
    else
        std::cerr << "tarvane-server: no --session: what clients send is not kept" << std::endl;

    CEventLog log(options.strLogFile);
    CCommandProcessor processor(OpenSession(pStore.get(), options), pStore.get(),
                                CRenderFolder(RenderFolderFor(pStore.get(), options)),
                                !options.fNoDocument, {}, {options.fReadOnly, options.fNoDelete});
    std::unique_ptr<CEditorFeed> pFeed;
    if (!options.strEditor.empty())
    {
        pFeed = std::make_unique<CEditorFeed>(Editor::MakeEditor(options.strEditor));
        pFeed->Begin(processor.Session());
        processor.FeedInto(*pFeed);
    }
    const std::chrono::milliseconds delay(std::llround(options.dDelay * 1000));
    CMisbehaviour misbehaviour(options.faults, options.seed);
    if (misbehaviour.StartsSlowly())
        signals.WaitFor(delay);
    CEventHandler handler(
        processor, log, std::move(misbehaviour),
        {[&signals] { signals.Wait(); }, [&signals, delay] { signals.WaitFor(delay); }});
    handler.Install();
    std::cout << "ready" << std::endl;
    loop.RunUntilEnd(signals);
    return kExitDone;
}

} // namespace Tarvane::Server
