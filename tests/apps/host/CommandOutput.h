// What a tool of the display says.
#pragma once

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace TarvaneTest
{

inline std::string OutputOf(const std::string& strCommand)
{
    std::string strOutput;
    FILE* pPipe = popen(strCommand.c_str(), "r");
    for (int c = std::fgetc(pPipe); c != EOF; c = std::fgetc(pPipe))
    {
        strOutput += static_cast<char>(c);
    }
    EXPECT_EQ(pclose(pPipe), 0) << strCommand;
    return strOutput;
}

} // namespace TarvaneTest
