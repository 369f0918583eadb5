#import "tests/TarvaneLinkAU/LinkViewFixture.h"

#include <cstring>

namespace
{
constexpr int kPattern = 0xEE;

// What is below the caller's frame, and where the next call's variables will be.
__attribute__((noinline, no_sanitize("address"))) void FillStack()
{
    unsigned char bytes[128 * 1024];
    std::memset(bytes, kPattern, sizeof bytes);
    asm volatile("" : : "r"(bytes) : "memory");
}

using Acknowledge = LinkViewFixture;

TEST_F(Acknowledge, LastByteIsNotWritten)
{
    Attach();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, 3);
    // No look-up lies between the filling and the call.
    auto pDeliver =
        (void (*)(id, SEL))(void (*)())[m_pView methodForSelector:@selector(TNProperty_Elements)];
    testing::internal::CaptureStderr();
    FillStack();
    pDeliver(m_pView, @selector(TNProperty_Elements));
    testing::internal::GetCapturedStderr();
    EXPECT_THAT(m_plugIn.Of("Set", TNProperty_ElementDone)[0].m_bytes,
                testing::ElementsAre(3, 0, 0, 0, 1, 1, 1, kPattern));
}
} // namespace
