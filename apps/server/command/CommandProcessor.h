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

#include "apps/server/command/EditorFeed.h"
#include "apps/server/database/SessionDatabase.h"
#include "apps/server/faults/FaultyFunctions.h"
#include "apps/server/sandbox/LuaSandbox.h"
#include "apps/server/script/ScriptFunctions.h"
#include "apps/server/sound/RenderFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tarvane::Server
{

/// What the error of a change that did not get to the disk begins with.
inline const std::string kNotSaved = "nothing was changed, for the session could not be saved: ";

struct CommandReply
{
    std::string strResult;
    std::string strError;  ///< empty for none
    bool fRefused = false; ///< a change was asked for and not made: there is no result, not even an
                           ///< empty one
    bool fChanged = false; ///< the session is another one because of this command
};

/// What is amiss with a server while it runs a command, on request.
struct Trouble
{
    bool fNoDocument = false;                ///< as with no document open
    std::optional<std::int64_t> frozenCount; ///< what GetUpdateCount answers
    FunctionFaults faults{};                 ///< of the functions that scripts call
};

/// What scripts may do to the session.
struct Access
{
    bool fReadOnly = false; ///< change nothing
    bool fNoDelete = false; ///< delete nothing
};

/// A command that has run. What it changed is not there for others yet.
struct Execution
{
    CommandReply reply;            ///< fChanged: there is something to conclude
    std::int64_t nUpdateCount = 0; ///< of the session as the command leaves it
    bool fConflict = false;        ///< nothing was done: the command is to be run again
};

/// Any one thread.
class CCommandProcessor
{
public:
    /// The database must outlive the object, and is the object's while it lives. The folder is for
    /// exported and rendered audio.
    CCommandProcessor(CSessionDatabase& database, CRenderFolder folder, bool fHasDocuments,
                      const SandboxLimits& limits = {}, const Access& access = {});

    /// From now on what changes goes to an editor first; what that does not take is not changed.
    /// The feed must outlive the object.
    void FeedInto(CEditorFeed& feed) { m_pFeed = &feed; }

    /// The two steps of a command. Conclude saves what has changed, and tells in the execution what
    /// is to be answered; it follows wherever Execute says that something has.
    Execution Execute(std::string_view strScript, const Trouble& trouble);
    void Conclude(Execution& execution);

    /// Does ahead what the next command needs before its script runs.
    void GetReady() { m_sandbox.GetReady(); }

    /// Both. A command in conflict with another is not run again, and changes nothing.
    CommandReply Run(std::string_view strScript, const Trouble& trouble = {});

    /// From now on functions that change fail with this text; empty: they do not.
    void RefuseChanges(const std::string& strWhy) { m_strRefusal = strWhy; }

private:
    std::vector<ScriptFunction> Functions(CScriptContext& context, const Trouble& trouble);
    ScriptResult RunInSession(std::string_view strScript, const Trouble& trouble);
    /// A function whose failures to read and to write are known of, whatever the script makes of
    /// them.
    void Watch(ScriptFunction& function);
    /// Empty when the editor has what is new, or there is none.
    std::string EditorError();

    CSessionDatabase& m_database;
    CEditorFeed* m_pFeed = nullptr;
    CRenderFolder m_folder;
    bool m_fHasDocuments;
    CLuaSandbox m_sandbox;
    Access m_access;
    std::string m_strRefusal;
    std::string m_strFailure; ///< of the database in this command; empty for none
    bool m_fConflict = false;
};

} // namespace Tarvane::Server
