#include "apps/server/CommandProcessor.h"

#include <stdexcept>
#include <utility>

namespace Tarvane::Server
{

namespace
{

constexpr const char* kNoDocument = "nothing was changed, for no document is open";

bool AsksForChange(std::string_view strScript, const ScriptResult& result)
{
    return result.fChangeCalled || NamesChange(strScript);
}

} // namespace

CCommandProcessor::CCommandProcessor(CSession session, CSessionStore* pStore, CRenderFolder folder,
                                     bool fHasDocuments, const SandboxLimits& limits,
                                     const Access& access)
    : m_session(std::move(session)), m_pStore(pStore), m_folder(std::move(folder)),
      m_fHasDocuments(fHasDocuments), m_limits(limits), m_access(access)
{
}

void CCommandProcessor::Begin(Trouble& trouble)
{
    if (!trouble.fFrozenCounter)
        m_nFrozenCount.reset();
    else if (!m_nFrozenCount)
        m_nFrozenCount = m_session.UpdateCount();
    trouble.nFrozenCount = m_nFrozenCount.value_or(0);
}

Execution CCommandProcessor::Execute(std::string_view strScript, const Trouble& trouble) const
{
    CSession session = m_session;
    CRenderFolder folder = m_folder;
    CScriptContext context(session, folder, m_fHasDocuments && !trouble.fNoDocument);
    ScriptResult result = RunScript(strScript, Functions(context, trouble), m_limits);
    if (result.strError.empty() && result.strOutput.empty() && !result.fChangeCalled &&
        context.SelectionFailed() && AsksForChange(strScript, result))
        result.strError = kNoDocument;

    if (!result.strError.empty())
        return {{"", std::move(result.strError), AsksForChange(strScript, result)}, std::nullopt};
    Execution execution{{std::move(result.strOutput), ""}, std::nullopt};
    if (session.UpdateCount() != m_session.UpdateCount())
        execution.changed = std::move(session);
    return execution;
}

CommandReply CCommandProcessor::Conclude(Execution execution)
{
    if (!execution.changed)
        return std::move(execution.reply);
    // Before the session is saved: a take that the editor has and the session has not can be sent
    // again; one that the editor has not would be lost to it.
    if (const std::string strError = EditorError(*execution.changed); !strError.empty())
        return {"", "nothing was changed, for the editor did not take it: " + strError, true};
    if (const std::string strSaveError = SaveError(*execution.changed); !strSaveError.empty())
        return {"", "nothing was changed, for the session could not be saved: " + strSaveError,
                true};
    m_session = *std::move(execution.changed);
    execution.reply.fChanged = true;
    return std::move(execution.reply);
}

CommandReply CCommandProcessor::Run(std::string_view strScript, Trouble trouble)
{
    Begin(trouble);
    return Conclude(Execute(strScript, trouble));
}

void CCommandProcessor::Change(const std::function<void(CSession&)>& change)
{
    CSession changed = m_session;
    change(changed);
    if (const std::string strSaveError = SaveError(changed); !strSaveError.empty())
        throw std::runtime_error("the session could not be saved: " + strSaveError);
    m_session = std::move(changed);
}

std::vector<ScriptFunction> CCommandProcessor::Functions(CScriptContext& context,
                                                         const Trouble& trouble) const
{
    std::vector<ScriptFunction> functions = MakeScriptFunctions(context);
    MisbehaveInFunctions(functions, context, trouble.faults);
    for (ScriptFunction& function : functions)
    {
        if (trouble.fFrozenCounter && function.strName == "GetUpdateCount")
            function.call = [nCount = trouble.nFrozenCount](const CScriptArguments&)
            { return nCount; };
        if (m_access.fReadOnly && function.fChanges)
            function.call = [](const CScriptArguments&) -> ScriptValue
            { throw CScriptError("this server changes nothing: it was started with --read-only"); };
        else if (m_access.fNoDelete && function.fDeletes)
            function.call = [](const CScriptArguments&) -> ScriptValue
            { throw CScriptError("this server deletes nothing: it was started with --no-delete"); };
    }
    return functions;
}

std::string CCommandProcessor::EditorError(const CSession& session)
{
    if (m_pFeed == nullptr)
        return "";
    try
    {
        m_pFeed->Pass(m_session, session);
        return "";
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}

std::string CCommandProcessor::SaveError(const CSession& session)
{
    if (m_pStore == nullptr)
        return "";
    try
    {
        m_pStore->Save(session);
        return "";
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}

} // namespace Tarvane::Server
