// What a script prints and fails with when it runs by itself.
#pragma once

#include "apps/server/sandbox/LuaSandbox.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Server
{

inline ScriptResult RunScript(std::string_view strScript,
                              const std::vector<ScriptFunction>& functions,
                              const SandboxLimits& limits = {})
{
    return CLuaSandbox(limits).Run(strScript, functions);
}

/// What it prints; it must not fail.
inline std::string Output(std::string_view strScript)
{
    const ScriptResult result = RunScript(strScript, {});
    EXPECT_EQ(result.strError, "") << strScript;
    return result.strOutput;
}

inline std::string Error(std::string_view strScript, const SandboxLimits& limits = {})
{
    return RunScript(strScript, {}, limits).strError;
}

} // namespace Tarvane::Server
