#include "apps/support/process/ChildProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <string>

namespace
{
using Tarvane::CChildProcess;

constexpr std::chrono::minutes kPatience(1);

std::string Disassembled(const char* szObject)
{
    CChildProcess objdump({TARVANE_OBJDUMP, "-d", szObject});
    EXPECT_EQ(objdump.WaitForEnd(kPatience), 0) << objdump.ErrorOutput();
    return objdump.Output();
}

// Of x86 and of arm64.
bool HasFusedOperations(const std::string& strCode)
{
    return std::regex_search(strCode, std::regex("\\bv?fn?m(add|sub|la|ls)"));
}

bool ProcessorFuses()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("fma");
#else
    return true;
#endif
}

TEST(Rounding, IsSeenWhereProductAndSumAreFused)
{
    EXPECT_TRUE(HasFusedOperations(Disassembled(TARVANE_FUSED_SAMPLE)));
}

TEST(Rounding, ViewForAProcessorThatFusesDoesNot)
{
    const std::string strCode = Disassembled(TARVANE_FUSING_VIEW);
    EXPECT_NE(strCode.find("TNProperty_Elements"), std::string::npos) << "this is not the view";
    EXPECT_FALSE(HasFusedOperations(strCode));
    if (ProcessorFuses())
    {
        CChildProcess delivery({TARVANE_FUSING_DELIVERY});
        EXPECT_EQ(delivery.WaitForEnd(kPatience), 0) << delivery.Output() << delivery.ErrorOutput();
    }
}
} // namespace
