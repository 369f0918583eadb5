// One command of a client, from its script to the reply: run it, keep what it changed, answer.
//
// What a client is told decides how a failing script is treated. The clients of this server take an
// event that was answered as delivered, whatever error text comes with it. So what a script has
// done before it fails stays done and is kept: undoing it would lose a take that its sender
// believes delivered, and sending it again is no risk, since the check for duplicates finds it. Its
// output is withheld, for half a list is no list.
//
// Nothing is answered for before it is on disk. When the session cannot be saved, all that the
// command changed is undone and the reply says so.
#pragma once

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
    std::string strError; // empty for none
};

// What is amiss with a server while it runs a command, on request.
struct Trouble
{
    bool fNoDocument = false;    // as with no document open
    bool fFrozenCounter = false; // GetUpdateCount stands where it was when the trouble began
};

// Any one thread.
class CCommandProcessor
{
public:
    // pStore may be null: then the session lives as long as this object. It must outlive the
    // object. The folder is for exported and rendered audio.
    CCommandProcessor(CSession session, CSessionStore* pStore, CRenderFolder folder,
                      bool fHasDocuments, const SandboxLimits& limits = {});

    CommandReply Run(std::string_view strScript, const Trouble& trouble = {});

    // Changes the session behind the clients' backs. Throws, and changes nothing, when it cannot be
    // saved.
    void Change(const std::function<void(CSession&)>& change);

    const CSession& Session() const { return m_session; }

private:
    std::vector<ScriptFunction> Functions(CScriptContext& context) const;
    // Empty when the session is on disk.
    std::string SaveError();

    CSession m_session;
    CSessionStore* m_pStore;
    CRenderFolder m_folder;
    bool m_fHasDocuments;
    SandboxLimits m_limits;
    std::optional<std::int64_t> m_nFrozenCount;
};

} // namespace Tarvane::Server
