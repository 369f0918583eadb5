// One command of a client, from its script to the reply: run it, keep what it changed, answer.
//
// A command changes all that it asks to change, or nothing. The clients of this server take a reply
// with a result as delivered, whatever error text comes with it; so a change that was asked for and
// not made is answered without one: for a script that fails, for one whose document cannot be
// selected, and for a session that cannot be saved. What the script changed before is undone then,
// so that sending it again doubles nothing. A change is asked for when the script calls a function
// that changes, or names one: a script that fails before its first call, or cannot be read, asked
// for it all the same.
//
// A question that fails is answered with an empty result beside its error: half a list is no list.
//
// Nothing is answered for before it is on disk, and with an editor before that has it as well.
#pragma once

#include "apps/server/EditorFeed.h"
#include "apps/server/FaultyFunctions.h"
#include "apps/server/LuaSandbox.h"
#include "apps/server/RenderFolder.h"
#include "apps/server/ScriptFunctions.h"
#include "apps/server/Session.h"
#include "apps/server/SessionStore.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Tarvane::Server
{

struct CommandReply
{
    std::string strResult;
    std::string strError;  // empty for none
    bool fRefused = false; // a change was asked for and not made: there is no result, not even an
                           // empty one
    bool fChanged = false; // the session is another one because of this command
};

// What is amiss with a server while it runs a command, on request.
struct Trouble
{
    bool fNoDocument = false;      // as with no document open
    bool fFrozenCounter = false;   // GetUpdateCount stands where it was when the trouble began
    std::int64_t nFrozenCount = 0; // where it stands then; see CCommandProcessor::Begin
    FunctionFaults faults{};       // of the functions that scripts call
};

// What scripts may do to the session.
struct Access
{
    bool fReadOnly = false; // change nothing
    bool fNoDelete = false; // delete nothing
};

// A command that has run, on a copy of the session.
struct Execution
{
    CommandReply reply;
    std::optional<CSession>
        changed; // the session as the command leaves it, if it changed any of it
};

// Any one thread.
class CCommandProcessor
{
public:
    // pStore may be null: then the session lives as long as this object. It must outlive the
    // object. The folder is for exported and rendered audio.
    CCommandProcessor(CSession session, CSessionStore* pStore, CRenderFolder folder,
                      bool fHasDocuments, const SandboxLimits& limits = {},
                      const Access& access = {});

    // From now on what changes goes to an editor first; what that does not take is not changed. The
    // feed must outlive the object.
    void FeedInto(CEditorFeed& feed) { m_pFeed = &feed; }

    // The three steps of a command. Begin fills in what the trouble needs to know; Execute may
    // happen in another process that has a copy of this object; Conclude saves what has changed and
    // says what is to be answered. What was executed on another state of the session than the
    // present one (UpdateCount) must not be concluded.
    void Begin(Trouble& trouble);
    Execution Execute(std::string_view strScript, const Trouble& trouble) const;
    CommandReply Conclude(Execution execution);

    CommandReply Run(std::string_view strScript, Trouble trouble = {});

    // Changes the session behind the clients' backs. Throws, and changes nothing, when it cannot be
    // saved.
    void Change(const std::function<void(CSession&)>& change);

    const CSession& Session() const { return m_session; }
    const SandboxLimits& Limits() const { return m_limits; }

private:
    std::vector<ScriptFunction> Functions(CScriptContext& context, const Trouble& trouble) const;
    // Empty when the editor has what is new, or there is none.
    std::string EditorError(const CSession& session);
    // Empty when the session is on disk.
    std::string SaveError(const CSession& session);

    CSession m_session;
    CSessionStore* m_pStore;
    CEditorFeed* m_pFeed = nullptr;
    CRenderFolder m_folder;
    bool m_fHasDocuments;
    SandboxLimits m_limits;
    Access m_access;
    std::optional<std::int64_t> m_nFrozenCount;
};

} // namespace Tarvane::Server
