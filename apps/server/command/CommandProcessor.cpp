#include "apps/server/command/CommandProcessor.h"

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

CCommandProcessor::CCommandProcessor(CSessionDatabase& database, CRenderFolder folder,
                                     bool fHasDocuments, const SandboxLimits& limits,
                                     const Access& access)
    : m_database(database), m_folder(std::move(folder)), m_fHasDocuments(fHasDocuments),
      m_sandbox(limits), m_access(access)
{
}

ScriptResult CCommandProcessor::RunInSession(std::string_view strScript, const Trouble& trouble)
{
    CScriptContext context(m_database, m_folder, m_fHasDocuments && !trouble.fNoDocument);
    ScriptResult result = m_sandbox.Run(strScript, Functions(context, trouble));
    if (result.strError.empty() && result.strOutput.empty() && !result.fChangeCalled &&
        context.SelectionFailed() && AsksForChange(strScript, result))
        result.strError = kNoDocument;
    return result;
}

Execution CCommandProcessor::Execute(std::string_view strScript, const Trouble& trouble)
{
    m_strFailure.clear();
    m_fConflict = false;
    ScriptResult result;
    try
    {
        m_database.Begin();
        result = RunInSession(strScript, trouble);
    }
    catch (const SQLite::Exception& error)
    {
        m_strFailure = m_database.Reason(error);
    }
    Execution execution;
    execution.fConflict = m_fConflict;
    const bool fAsksForChange = AsksForChange(strScript, result);
    if (!m_strFailure.empty())
        result.strError =
            (fAsksForChange ? kNotSaved : "the session could not be read: ") + m_strFailure;
    if (result.strError.empty() && !m_fConflict && m_database.HasChanged())
    {
        execution.reply = {std::move(result.strOutput), "", false, true};
        execution.nUpdateCount = m_database.UpdateCount();
        return execution;
    }
    m_database.Rollback();
    execution.nUpdateCount = m_database.UpdateCount();
    if (result.strError.empty())
        execution.reply.strResult = std::move(result.strOutput);
    else
        execution.reply = {"", std::move(result.strError), fAsksForChange};
    return execution;
}

void CCommandProcessor::Conclude(Execution& execution)
try
{
    // Before the session is saved: a take that the editor has and the session has not can be sent
    // again; one that the editor has not would be lost to it.
    if (const std::string strError = EditorError(); !strError.empty())
    {
        m_database.Rollback();
        execution.reply = {"", "nothing was changed, for the editor did not take it: " + strError,
                           true};
        execution.nUpdateCount = m_database.UpdateCount();
        return;
    }
    m_database.Commit();
}
catch (const SQLite::Exception& error)
{
    const std::string strReason = m_database.Reason(error);
    m_database.Rollback();
    execution.reply = {"", kNotSaved + strReason, true};
    execution.nUpdateCount = m_database.UpdateCount();
}

CommandReply CCommandProcessor::Run(std::string_view strScript, const Trouble& trouble)
{
    Execution execution = Execute(strScript, trouble);
    if (execution.reply.fChanged)
        Conclude(execution);
    return std::move(execution.reply);
}

void CCommandProcessor::Watch(ScriptFunction& function)
{
    function.call = [this, call = std::move(function.call)](const CScriptArguments& arguments)
    {
        try
        {
            return call(arguments);
        }
        catch (const SQLite::Exception& error)
        {
            m_strFailure = m_database.Reason(error);
            throw;
        }
        catch (const CSessionConflict&)
        {
            m_fConflict = true;
            throw;
        }
    };
}

std::vector<ScriptFunction> CCommandProcessor::Functions(CScriptContext& context,
                                                         const Trouble& trouble)
{
    std::vector<ScriptFunction> functions = MakeScriptFunctions(context);
    MisbehaveInFunctions(functions, context, trouble.faults);
    for (ScriptFunction& function : functions)
    {
        Watch(function);
        if (trouble.frozenCount && function.strName == "GetUpdateCount")
            function.call = [nCount = *trouble.frozenCount](const CScriptArguments&)
            { return nCount; };
        if (!m_strRefusal.empty() && function.fChanges)
            function.call = [this](const CScriptArguments&) -> ScriptValue
            { throw CScriptError(m_strRefusal); };
        else if (m_access.fReadOnly && function.fChanges)
            function.call = [](const CScriptArguments&) -> ScriptValue
            { throw CScriptError("this server changes nothing: it was started with --read-only"); };
        else if (m_access.fNoDelete && function.fDeletes)
            function.call = [](const CScriptArguments&) -> ScriptValue
            { throw CScriptError("this server deletes nothing: it was started with --no-delete"); };
    }
    return functions;
}

std::string CCommandProcessor::EditorError()
{
    if (m_pFeed == nullptr)
        return "";
    try
    {
        m_pFeed->Pass(m_database);
        return "";
    }
    catch (const SQLite::Exception&)
    {
        throw;
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}

} // namespace Tarvane::Server
