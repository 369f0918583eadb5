#include "apps/server/CommandProcessor.h"

#include "apps/server/ScriptFunctions.h"

#include <utility>

namespace Tarvane::Server
{

CCommandProcessor::CCommandProcessor(CSession session, CSessionStore* pStore, CRenderFolder folder,
                                     bool fHasDocuments, const SandboxLimits& limits)
    : m_session(std::move(session)), m_pStore(pStore), m_folder(std::move(folder)),
      m_fHasDocuments(fHasDocuments), m_limits(limits)
{
}

CommandReply CCommandProcessor::Run(std::string_view strScript)
{
    CSession before = m_session;
    CScriptContext context(m_session, m_folder, m_fHasDocuments);
    ScriptResult result = RunScript(strScript, MakeScriptFunctions(context), m_limits);

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
