#include "apps/support/recording/PropertyLines.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using namespace Tarvane;
using Kind = SeenProperty::Kind;

namespace
{

template <typename Value> std::string BytesOf(const Value& value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

RecordedJson FieldsOf(AudioUnitPropertyID nId, const std::string& strBytes)
{
    return PropertyLine({Kind::Read, nId, 0, 0, true, 0, strBytes})["fields"];
}

SeenProperty Read(AudioUnitPropertyID nId, const std::string& strBytes)
{
    return {Kind::Read, nId, 0, 0, true, 0, strBytes};
}

} // namespace

TEST(PropertyLines, NotificationSaysOnWhichThreadItCame)
{
    EXPECT_EQ(PropertyLine({Kind::Notification, 64000, 0, 0, false, 0, {}}).dump(),
              R"({"kind":"notification","property":64000,"name":"TNProperty_Elements","scope":0,)"
              R"("element":0,"thread":"other"})");
}

TEST(PropertyLines, ReadAndWriteHaveStatusAndFields)
{
    EXPECT_EQ(
        PropertyLine({Kind::Write, 64005, 0, 0, true, -10851, BytesOf(TNArmRequest{1, 0})}).dump(),
        R"({"kind":"write","property":64005,"name":"TNProperty_SetArmCapture","scope":0,)"
        R"("element":0,"thread":"main","status":-10851,"fields":{"fArm":1,"fShift":0}})");
    EXPECT_EQ(PropertyLine({Kind::Read, 64002, 0, 3, true, -10877, {}}).dump(),
              R"({"kind":"read","property":64002,"name":"TNProperty_ElementInfo","scope":0,)"
              R"("element":3,"thread":"main","status":-10877})");
}

TEST(PropertyLines, EachValueIsReadable)
{
    EXPECT_EQ(FieldsOf(64004, BytesOf(UInt8(1))).dump(), R"({"fArmed":1})");
    EXPECT_EQ(FieldsOf(64006, BytesOf(0.5)).dump(), R"({"seconds":0.5})");
    EXPECT_EQ(FieldsOf(64007, BytesOf(SInt32(-1))).dump(), R"({"nElement":-1})");
    EXPECT_EQ(FieldsOf(64009, BytesOf(SInt32(2))).dump(), R"({"track":2})");
    EXPECT_EQ(FieldsOf(64010, BytesOf(1.25)).dump(), R"({"seconds":1.25})");
}

TEST(PropertyLines, RecordOfAnElementIsReadField)
{
    TNCaptureElement record;
    record.nHeader = 5;
    std::strcpy(record.szGuidePath, "/guide\xF6");
    std::memset(record.szDubPath, 'x', sizeof record.szDubPath);
    record.tGuide.dAux = 1.5;
    record.tDub = {96100, 1, 2, 3, std::numeric_limits<double>::infinity(), 6};
    record.tThird.dReservedB = 7;
    record.fIdentical = 1;
    record.dSampleRate = 48000;
    const RecordedJson fields = FieldsOf(64002, BytesOf(record));
    EXPECT_EQ(fields.size(), 23U);
    EXPECT_EQ(fields["nHeader"], 5);
    EXPECT_EQ(fields["szGuidePath"]["hex"], "2f6775696465f6");
    EXPECT_EQ(fields["szDubPath"], std::string(kTNPathSize, 'x'));
    EXPECT_EQ(fields["tGuide.dAux"], 1.5);
    EXPECT_EQ(fields["tDub.dPosition"], 96100.0);
    EXPECT_EQ(fields["tDub.dAux"], 1.0);
    EXPECT_EQ(fields["tDub.dReservedA"], 2.0);
    EXPECT_EQ(fields["tDub.dStart"], 3.0);
    EXPECT_EQ(fields["tDub.dEnd"], "Infinity");
    EXPECT_EQ(fields["tDub.dReservedB"], 6.0);
    EXPECT_EQ(fields["tThird.dReservedB"], 7.0);
    EXPECT_EQ(fields["fIdentical"], 1);
    EXPECT_EQ(fields["dSampleRate"], 48000.0);
}

TEST(PropertyLines, ValueOfAnotherSizeIsShownAsBytes)
{
    const RecordedJson line = PropertyLine(Read(64009, "abc"));
    EXPECT_EQ(line["hex"], "616263");
    EXPECT_FALSE(line.contains("fields"));
}

TEST(PropertyLines, OnlyWhatIsTheSameInEveryRespectIsARepeat)
{
    const SeenProperty seen = Read(64007, "abcd");
    EXPECT_TRUE(seen.IsRepeatOf(Read(64007, "abcd")));
    EXPECT_FALSE(seen.IsRepeatOf(Read(64007, "abce")));
    EXPECT_FALSE(seen.IsRepeatOf(Read(64009, "abcd")));
    const auto expectOther = [&seen](void (*change)(SeenProperty&))
    {
        SeenProperty other = seen;
        change(other);
        EXPECT_FALSE(seen.IsRepeatOf(other));
    };
    expectOther([](SeenProperty& other) { other.kind = Kind::Notification; });
    expectOther([](SeenProperty& other) { other.nScope = 1; });
    expectOther([](SeenProperty& other) { other.nElement = 1; });
    expectOther([](SeenProperty& other) { other.fMainThread = false; });
    expectOther([](SeenProperty& other) { other.nStatus = -1; });
}

TEST(PropertyLines, ProgressIsARepeatWhateverItTellsAndAWriteNever)
{
    EXPECT_TRUE(Read(64010, "abcdefgh").IsRepeatOf(Read(64010, "abcdefgx")));
    EXPECT_TRUE(Read(64006, "abcdefgh").IsRepeatOf(Read(64006, "abcdefgx")));
    const SeenProperty write{Kind::Write, 64009, 0, 0, true, 0, "abcd"};
    EXPECT_FALSE(write.IsRepeatOf(write));
}
