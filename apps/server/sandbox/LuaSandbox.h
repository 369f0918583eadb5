// Runs scripts of clients, which may be anything, without harm to the server.
#pragma once

#include "apps/server/sandbox/ScriptArguments.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Server
{

/// What one script may use. Passing a bound ends the script with an error that names the bound;
/// pcall does not catch it.
struct SandboxLimits
{
    std::size_t nScriptBytes = 256 << 10;
    std::size_t nMemoryBytes = 16 << 20;
    /// Under the 16 MiB that a reply can carry, in UTF-16 too.
    std::size_t nOutputBytes = 4 << 20;
    std::int64_t nInstructions = 10'000'000;
    /// Of processor time. Waiting does not count, nor does a stopped process. It is looked at
    /// between instructions; whoever runs scripts ends what takes longer within one
    /// (ScriptWorker.h).
    std::int64_t nMilliseconds = 10'000;
    /// Of one call of a library function that counts no instructions: a step is a byte, a table
    /// entry or a try of a pattern. A call that could take more is refused with an error of its
    /// own, before it begins. A hundred million steps are less than a second.
    double dCallSteps = 1e8;
};

/// One function that scripts can call. It may throw CScriptError, whose text becomes the Lua error,
/// after the function's name; other exceptions become Lua errors in the same way.
struct ScriptFunction
{
    std::string strName;
    std::function<ScriptValue(const CScriptArguments&)> call;
    bool fChanges = false; ///< what its callers ask for is a change of the session
    bool fDeletes = false; ///< and a loss of what is in it
};

struct ScriptResult
{
    /// A line for each print, each ended by a line feed.
    std::string strOutput;
    /// Empty when the script ran to its end.
    std::string strError;
    /// A function that changes was called, whether it did or not.
    bool fChangeCalled = false;
};

/// What is said of a script that has passed the bound of time.
std::string ProcessorTimeText(std::int64_t nMilliseconds);

class CSandboxState;

/// Runs scripts, each in a fresh state, which offers the given functions and these of Lua 5.4:
/// assert, error, ipairs, next, pairs, pcall, print, rawequal, rawget, rawlen, rawset, select,
/// tonumber, tostring, type, _VERSION, and string, table and math without what reaches bytecode.
/// There are no metatables but that of strings, no coroutines, no loading, no files, no processes.
///
/// The script is text, UTF-8. print writes one line a call: its arguments with a tab between them,
/// numbers as NumberText writes them, and a space for each line end and NUL within. One thread at a
/// time, for one set of functions too.
class CLuaSandbox
{
public:
    explicit CLuaSandbox(const SandboxLimits& limits = {});
    ~CLuaSandbox();

    /// Frees the state of the last script and makes that of the next ahead, which takes longer than
    /// a short script does. Run does it where it was not called.
    void GetReady();

    /// Never throws for anything that a script does.
    ScriptResult Run(std::string_view strScript, const std::vector<ScriptFunction>& functions);

private:
    const SandboxLimits m_limits;
    std::unique_ptr<CSandboxState> m_pFresh, m_pSpent;
};

} // namespace Tarvane::Server
