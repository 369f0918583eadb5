// Selecting a document, and what concerns the whole of one.
#include "apps/server/script/ScriptFunctions.h"
#include "apps/support/program/ProgramVersion.h"

namespace Tarvane::Server
{

namespace
{

ScriptValue MoveDisplay(CScriptContext& context, const CScriptArguments& arguments)
{
    context.Session().MoveDisplay(context.Selected(), arguments.Number(1));
    return {};
}

// The offset is the session's, and yet only of use with a document to put regions into.
ScriptValue LinkOffset(CScriptContext& context)
{
    context.Selected();
    return context.Session().LinkOffset();
}

} // namespace

std::vector<ScriptFunction> DocumentFunctions(CScriptContext& context)
{
    return {
        {"SelectScriptDocument",
         [&context](const CScriptArguments&) { return context.Select(DocumentKind::Script); }},
        {"SelectAudioSuiteDocument",
         [&context](const CScriptArguments&) { return context.Select(DocumentKind::AudioSuite); }},
        {"GetLinkVersion", [](const CScriptArguments&) { return std::string(ProgramVersion()); }},
        {"GetUpdateCount",
         [&context](const CScriptArguments&) { return context.Session().UpdateCount(); }},
        {"GetLinkSMPTEOffset", [&context](const CScriptArguments&) { return LinkOffset(context); }},
        {"MoveDisplayToPosition",
         [&context](const CScriptArguments& arguments) { return MoveDisplay(context, arguments); },
         true},
    };
}

} // namespace Tarvane::Server
