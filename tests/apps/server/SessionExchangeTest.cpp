#include "apps/server/SessionExchange.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

using namespace Tarvane::Server;

TEST(SessionExchange, WhatCouldNotBeImportedAgainIsNotExported)
{
    const TarvaneTest::CTemporaryFolder folder;
    Options options;
    options.strSessionFile = folder / "session";
    options.strExportFile = folder / "exported";
    CSessionStore(options.strSessionFile).Save(CSession());
    EXPECT_THROW(ExportSession(options, 3), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(options.strExportFile));

    EXPECT_EQ(ExportSession(options), 0);
    const auto nBytes = std::filesystem::file_size(options.strExportFile);
    std::filesystem::remove(options.strExportFile);
    EXPECT_THROW(ExportSession(options, nBytes - 1), std::runtime_error);
    EXPECT_EQ(ExportSession(options, nBytes), 0);
}
