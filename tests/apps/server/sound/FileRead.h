// How much of files this process reads, and files that count as settled.
#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace TarvaneTest
{

/// By this process so far, from files and all else.
inline std::int64_t BytesRead()
{
    std::ifstream io("/proc/self/io");
    std::string strName;
    std::int64_t nBytes = 0;
    io >> strName >> nBytes;
    EXPECT_EQ(strName, "rchar:");
    return nBytes;
}

/// Returns in a second in which the file has not been changed.
inline void Settle(const std::filesystem::path& file)
{
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0) << file;
    while (std::time(nullptr) <= status.st_ctime)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

} // namespace TarvaneTest
