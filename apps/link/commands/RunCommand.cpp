#include "apps/link/commands/Commands.h"
#include "apps/link/shared/SendableText.h"
#include "apps/support/program/CommandLine.h"

#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <fstream>
#include <iostream>
#include <iterator>

namespace Tarvane::Link
{

namespace
{

std::string ReadAll(std::istream& stream, const std::string& strWhat)
{
    std::string strText{std::istreambuf_iterator<char>(stream), {}};
    if (stream.bad())
        throw CUsageError("cannot read " + strWhat + ".");
    return strText;
}

std::string ReadFile(const std::string& strFile)
{
    std::ifstream stream(strFile, std::ios::binary);
    // A folder opens, and has no first byte.
    stream.peek();
    if (!stream && !stream.eof())
        throw CUsageError("cannot read the script file " + strFile + "; name a text file.");
    stream.clear(stream.rdstate() & ~std::ios::eofbit);
    return ReadAll(stream, strFile);
}

std::string ScriptOf(const Options& options)
{
    if (options.scriptFile)
        return ReadFile(*options.scriptFile);
    if (options.script && *options.script != "-")
        return *options.script;
    return ReadAll(std::cin, "the standard input");
}

} // namespace

Answer Run(CTarvaneScript& link, const Options& options)
{
    const std::string strScript = ScriptOf(options);
    RequireSendable(strScript, "the script");
    CCommandResult result;
    link.SendCommand(strScript.c_str(), result.Receive(), options.TimeoutTicks());
    Answer answer{OutcomeOf(link)};
    if (result.Text() != nullptr)
    {
        answer.strText = result.Text();
        answer.fields["result"] = result.Text();
    }
    return answer;
}

} // namespace Tarvane::Link
