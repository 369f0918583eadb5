// A delivery by a view that was built for a processor with fused operations. RoundingTest runs it
// where there is such a processor.
#import "tests/TarvaneLinkAU/LinkViewFixture.h"

#include <cstring>

namespace
{
using FusingDelivery = LinkViewFixture;

TEST_F(FusingDelivery, PositionIsRoundedBehindTheProductAndBehindTheSum)
{
    Attach();
    TNCaptureElement tElement;
    std::strcpy(tElement.szDubPath, "/takes/dub.wav");
    tElement.tDub.dPosition = 4209739;
    tElement.tDub.dEnd = 1;
    tElement.dSampleRate = 48000;
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, 0);
    m_plugIn.SetValue(TNProperty_ElementInfo, tElement);
    m_events.Print("0\n");
    m_events.Print("-245.027\n");
    m_events.Print("");
    [m_pView TNProperty_Elements];
    // A fused operation gives -7551556.
    EXPECT_THAT(m_events.Scripts().back(), testing::HasSubstr("true, false, -7551557,0,1)"));
}
} // namespace
