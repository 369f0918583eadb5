#include "apps/server/CommandProcessor.h"

#include <stdexcept>
#include <utility>

namespace Tarvane::Server
{

CCommandProcessor::CCommandProcessor(CSession session, CSessionStore* pStore, CRenderFolder folder,
                                     bool fHasDocuments, const SandboxLimits& limits)
    : m_session(std::move(session)), m_pStore(pStore), m_folder(std::move(folder)),
      m_fHasDocuments(fHasDocuments), m_limits(limits)
{
}

CommandReply CCommandProcessor::Run(std::string_view strScript, const Trouble& trouble)
{
    CSession before = m_session;
    if (!trouble.fFrozenCounter)
        m_nFrozenCount.reset();
    else if (!m_nFrozenCount)
        m_nFrozenCount = m_session.UpdateCount();
    CScriptContext context(m_session, m_folder, m_fHasDocuments && !trouble.fNoDocument);
    ScriptResult result = RunScript(strScript, Functions(context), m_limits);

    CommandReply reply{std::move(result.strOutput), std::move(result.strError)};
    if (m_session.UpdateCount() != before.UpdateCount())
    {
        const std::string strSaveError = SaveError();
        if (!strSaveError.empty())
        {
            m_session = std::move(before);
            reply.strError =
                "nothing was changed, for the session could not be saved: " + strSaveError +
                (reply.strError.empty() ? "" : "; and " + reply.strError);
        }
    }
    if (!reply.strError.empty())
        reply.strResult.clear();
    return reply;
}

void CCommandProcessor::Change(const std::function<void(CSession&)>& change)
{
    CSession before = m_session;
    change(m_session);
    if (const std::string strSaveError = SaveError(); !strSaveError.empty())
    {
        m_session = std::move(before);
        throw std::runtime_error("the session could not be saved: " + strSaveError);
    }
}

std::vector<ScriptFunction> CCommandProcessor::Functions(CScriptContext& context) const
{
    std::vector<ScriptFunction> functions = MakeScriptFunctions(context);
    for (ScriptFunction& function : functions)
    {
        if (m_nFrozenCount && function.strName == "GetUpdateCount")
            function.call = [nCount = *m_nFrozenCount](const CScriptArguments&) { return nCount; };
    }
    return functions;
}

std::string CCommandProcessor::SaveError()
{
    if (m_pStore == nullptr)
        return "";
    try
    {
        m_pStore->Save(m_session);
        return "";
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}

} // namespace Tarvane::Server
