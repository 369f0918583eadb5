// Processes of the selected document.
#include "apps/server/script/Processes.h"
#include "apps/server/script/ScriptFunctions.h"

#include <utility>

namespace Tarvane::Server
{

namespace
{

// Above what any process takes.
constexpr std::size_t kMostEntries = 16;

std::int64_t Field(const ScriptRecord& record, const char* szName)
{
    const auto found = record.find(szName);
    if (found == record.end())
        throw CScriptError(std::string("an input or output has no whole number \"") + szName +
                           "\"");
    return found->second;
}

ScriptValue Create(CScriptContext& context, const CScriptArguments& arguments)
{
    Process process;
    process.strKind = arguments.String(1);
    process.strHost = arguments.String(2);
    for (const ScriptRecord& input : arguments.Records(3, kMostEntries))
        process.inputs.push_back({Field(input, "IOType"), Field(input, "Track"),
                                  Field(input, "Start"), Field(input, "End")});
    for (const ScriptRecord& output : arguments.Records(4, kMostEntries))
        process.outputTrackIds.push_back(Field(output, "Track"));
    if (const auto flaw = ProcessFlaw(process, context.Session(), context.Selected()))
        throw CScriptError(*flaw);
    return CreateProcess(context.Session(), context.Selected(), std::move(process));
}

ScriptValue FindLast(CScriptContext& context)
{
    return context.Session().LastProcessId(context.Selected());
}

ScriptValue Select(CScriptContext& context, const CScriptArguments& arguments)
{
    const std::int64_t nProcessId = arguments.Integer(1);
    const auto region = context.Session().ProcessRegion(context.Selected(), nProcessId);
    if (!region)
        throw CScriptError("the document has no process with the id " + std::to_string(nProcessId));
    context.Session().SelectRegion(context.Selected(), *region);
    return {};
}

} // namespace

std::vector<ScriptFunction> ProcessFunctions(CScriptContext& context)
{
    return {
        {"CreateProcess",
         [&context](const CScriptArguments& arguments) { return Create(context, arguments); },
         true},
        {"FindLastProcessCreated",
         [&context](const CScriptArguments&) { return FindLast(context); }},
        {"SelectProcess",
         [&context](const CScriptArguments& arguments) { return Select(context, arguments); },
         true},
    };
}

} // namespace Tarvane::Server
