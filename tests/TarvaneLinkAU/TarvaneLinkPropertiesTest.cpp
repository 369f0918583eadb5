#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace
{
// A record as a signal side writes it, byte by byte.
class CRecord
{
public:
    template <typename T> void Put(std::size_t nOffset, T value)
    {
        std::memcpy(m_bytes.data() + nOffset, &value, sizeof value);
    }
    void PutText(std::size_t nOffset, const char* szText)
    {
        std::memcpy(m_bytes.data() + nOffset, szText, std::strlen(szText) + 1);
    }
    TNCaptureElement Element() const
    {
        TNCaptureElement tElement;
        std::memcpy(&tElement, m_bytes.data(), sizeof tElement);
        return tElement;
    }

private:
    std::vector<unsigned char> m_bytes = std::vector<unsigned char>(sizeof(TNCaptureElement));
};

TEST(LinkProperties, IdsAreThePublishedOnes)
{
    EXPECT_EQ(TNProperty_Elements, 0xFA00u);
    EXPECT_EQ(TNProperty_ElementInfo, 0xFA02u);
    EXPECT_EQ(TNProperty_ArmCapture, 0xFA04u);
    EXPECT_EQ(TNProperty_SetArmCapture, 0xFA05u);
    EXPECT_EQ(TNProperty_CurrentSampleInTimeLine, 0xFA06u);
    EXPECT_EQ(TNProperty_NextElement, 0xFA07u);
    EXPECT_EQ(TNProperty_ElementDone, 0xFA08u);
    EXPECT_EQ(TNProperty_SelectedTrack, 0xFA09u);
    EXPECT_EQ(kTNProperty_CurrentCaptureLength, 0xFA0Au);
}

TEST(LinkProperties, CapturedElementIsReadWhereTheSignalSideWritesIt)
{
    ASSERT_FALSE(TNLayout::kDoublesOn4) << "the offsets below are those of doubles on 8";
    CRecord record;
    record.Put<std::int32_t>(0, 7);
    record.PutText(4, "/guide.wav");
    record.Put(1032, 1.0);
    record.Put(1040, 2.0);
    record.Put(1056, 3.0);
    record.Put(1064, 4.0);
    record.PutText(1080, "/dub.wav");
    record.Put(2104, 5.0);
    record.Put(2112, 6.0);
    record.Put(2128, 7.0);
    record.Put(2136, 8.0);
    record.Put(3184, 9.0);
    record.Put<std::uint8_t>(3232, 1);
    record.Put(3240, 48000.0);

    const TNCaptureElement tElement = record.Element();
    EXPECT_EQ(tElement.nHeader, 7);
    EXPECT_STREQ(tElement.szGuidePath, "/guide.wav");
    EXPECT_EQ(tElement.tGuide.dPosition, 1.0);
    EXPECT_EQ(tElement.tGuide.dAux, 2.0);
    EXPECT_EQ(tElement.tGuide.dStart, 3.0);
    EXPECT_EQ(tElement.tGuide.dEnd, 4.0);
    EXPECT_STREQ(tElement.szDubPath, "/dub.wav");
    EXPECT_EQ(tElement.tDub.dPosition, 5.0);
    EXPECT_EQ(tElement.tDub.dAux, 6.0);
    EXPECT_EQ(tElement.tDub.dStart, 7.0);
    EXPECT_EQ(tElement.tDub.dEnd, 8.0);
    EXPECT_EQ(tElement.tThird.dPosition, 9.0);
    EXPECT_EQ(tElement.fIdentical, 1);
    EXPECT_EQ(tElement.dSampleRate, 48000.0);
}

TEST(LinkProperties, PaddingOfAnAcknowledgeIsNobodysField)
{
    TNElementAck tAck;
    unsigned char bytes[sizeof tAck];
    std::memset(bytes, 0xEE, sizeof bytes);
    std::memcpy(&tAck, bytes, sizeof tAck);
    tAck.nElement = 0;
    tAck.fHandled = 0;
    tAck.fNotDelivered = 0;
    tAck.fFinal = 0;
    std::memcpy(bytes, &tAck, sizeof bytes);
    EXPECT_EQ(bytes[6], 0);
    EXPECT_EQ(bytes[7], 0xEE);
}

TEST(LinkProperties, FreshTimesAreAllZero)
{
    TNRegionTimes tTimes;
    EXPECT_EQ(tTimes.dAux, 0.0);
    EXPECT_EQ(tTimes.dReservedA, 0.0);
    EXPECT_EQ(tTimes.dStart, 0.0);
    EXPECT_EQ(tTimes.dEnd, 0.0);
    EXPECT_EQ(tTimes.dReservedB, 0.0);
}
} // namespace
