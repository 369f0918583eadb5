#include "tests/apps/link/LinkFixture.h"

#include "apps/link/Link.h"
#include "apps/support/recording/EventWatch.h"

#include <cstdlib>

namespace
{

constexpr Tarvane::Link::BusState kWorkingBus{Tarvane::Link::BusState::Works, "the bus works", ""};

} // namespace

namespace TarvaneTest
{

Tarvane::Link::BusState busState = kWorkingBus;
std::string strCarriersError;

} // namespace TarvaneTest

Tarvane::Link::BusState Tarvane::Link::LookAtEventBus(SInt32)
{
    return TarvaneTest::busState;
}

std::string Tarvane::Link::CarriersError()
{
    return TarvaneTest::strCarriersError;
}

// As on a system that shows its events to nobody.
bool Tarvane::WatchEvents(std::vector<CEventWatcher*>)
{
    return false;
}

namespace TarvaneTest
{

Ran RunLink(const std::vector<std::string>& arguments)
{
    std::string strName = "tarvane-link";
    std::vector<char*> words{strName.data()};
    for (const std::string& strArgument : arguments)
        words.push_back(const_cast<char*>(strArgument.c_str()));
    words.push_back(nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int nExitCode = Tarvane::Link::RunLink(static_cast<int>(words.size()) - 1, words.data());
    std::string strOutput = testing::internal::GetCapturedStdout();
    return {nExitCode, std::move(strOutput), testing::internal::GetCapturedStderr()};
}

LinkTest::LinkTest()
{
    busState = kWorkingBus;
    strCarriersError.clear();
    m_events.m_whileSending = [this]
    {
        const std::string strScript = m_events.Scripts().back();
        for (const auto& [strPart, reply] : m_rules)
        {
            if (strScript.find(strPart) != std::string::npos)
                return m_events.Play(reply);
        }
    };
}

LinkTest::~LinkTest()
{
    unsetenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS");
    unsetenv("TARVANE_AE_TRACE");
    EXPECT_EQ(m_events.LiveDescriptors(), 0U);
}

void LinkTest::Answer(std::string strPart, std::string_view printed)
{
    Rule(std::move(strPart), {noErr, Events::TextBytes(printed), std::nullopt});
}

void LinkTest::AnswerError(std::string strPart, std::string_view error)
{
    Rule(std::move(strPart),
         {noErr, Events::TextBytes(std::string_view()), Events::TextBytes(error)});
}

void LinkTest::AnswerStatus(std::string strPart, OSErr status)
{
    Rule(std::move(strPart), {status, std::nullopt, std::nullopt});
}

} // namespace TarvaneTest
