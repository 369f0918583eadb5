#include "apps/support/unit/PropertyLog.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using Tarvane::DescribeWrite;
using Tarvane::PropertyName;

TEST(PropertyLog, NamesTheNinePropertiesInUse)
{
    EXPECT_STREQ(PropertyName(64000), "TNProperty_Elements");
    EXPECT_STREQ(PropertyName(64001), "unknown");
    EXPECT_STREQ(PropertyName(64002), "TNProperty_ElementInfo");
    EXPECT_STREQ(PropertyName(64003), "unknown");
    EXPECT_STREQ(PropertyName(64004), "TNProperty_ArmCapture");
    EXPECT_STREQ(PropertyName(64005), "TNProperty_SetArmCapture");
    EXPECT_STREQ(PropertyName(64006), "TNProperty_CurrentSampleInTimeLine");
    EXPECT_STREQ(PropertyName(64007), "TNProperty_NextElement");
    EXPECT_STREQ(PropertyName(64008), "TNProperty_ElementDone");
    EXPECT_STREQ(PropertyName(64009), "TNProperty_SelectedTrack");
    EXPECT_STREQ(PropertyName(64010), "kTNProperty_CurrentCaptureLength");
    EXPECT_STREQ(PropertyName(64011), "unknown");
}

TEST(PropertyLog, ShowsTheFieldsOfEachRecord)
{
    const TNArmRequest request{1, 0};
    EXPECT_EQ(DescribeWrite(64005, &request, 2),
              "64005 TNProperty_SetArmCapture: fArm 1, fShift 0");
    TNElementAck ack;
    std::memset(&ack, 0xAA, sizeof ack);
    ack.nElement = 3;
    ack.fHandled = 1;
    ack.fNotDelivered = 0;
    ack.fFinal = 1;
    EXPECT_EQ(DescribeWrite(64008, &ack, 8),
              "64008 TNProperty_ElementDone: nElement 3, fHandled 1, fNotDelivered 0, fFinal 1");
    const SInt32 nTrack = -1;
    EXPECT_EQ(DescribeWrite(64009, &nTrack, 4), "64009 TNProperty_SelectedTrack: track -1");
}

TEST(PropertyLog, ShowsAnythingElseAsBytes)
{
    const unsigned char bytes[] = {0x01, 0xFE, 0x00};
    EXPECT_EQ(DescribeWrite(64008, bytes, 3), "64008 TNProperty_ElementDone: 3 bytes 01 FE 00");
    EXPECT_EQ(DescribeWrite(64001, bytes, 3), "64001 unknown: 3 bytes 01 FE 00");
    EXPECT_EQ(DescribeWrite(64009, nullptr, 4), "64009 TNProperty_SelectedTrack: 4 bytes");
}

TEST(PropertyLog, CutsALongValueShort)
{
    const std::vector<char> bytes(65, 0);
    const std::string strText = DescribeWrite(1, bytes.data(), 65);
    EXPECT_EQ(strText.substr(strText.size() - 9), "00 00 ...");
    EXPECT_EQ(strText.size(), std::string("1 unknown: 65 bytes").size() + 64 * 3 + 4);
}
