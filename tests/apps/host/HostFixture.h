// The host as a process.
#pragma once

#include "apps/demo/HostClient.h"
#include "apps/server/database/SessionStore.h"
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace TarvaneTest
{

/// No test waits for it when all is well.
constexpr std::chrono::minutes kLong{3};

inline std::vector<std::string> Host(std::vector<std::string> options)
{
    options.insert(options.begin(), HOST_PROGRAM);
    return options;
}

inline std::string FileText(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline nlohmann::json CapturesIn(const std::filesystem::path& results)
{
    return nlohmann::json::parse(FileText(results / "captures.json"), nullptr, false)
        .value("captures", nlohmann::json::array());
}

} // namespace TarvaneTest
