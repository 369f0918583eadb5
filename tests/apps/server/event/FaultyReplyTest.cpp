#include "apps/server/event/FaultyReply.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace Tarvane::Server
{
namespace
{

// What the event carries for a client.
struct Carried
{
    std::optional<std::u16string> result;
    std::optional<std::u16string> error;
    DescType nResultType = typeNull;
};

std::optional<std::u16string> Text(const AppleEvent& event, AEKeyword nKey)
{
    Size nBytes = 0;
    if (AESizeOfParam(&event, nKey, nullptr, &nBytes) != noErr)
        return std::nullopt;
    std::u16string units(static_cast<std::size_t>(nBytes) / 2, u'\0');
    AEGetParamPtr(&event, nKey, typeWildCard, nullptr, units.data(), nBytes, nullptr);
    return units;
}

Carried Put(const CommandReply& reply, const FaultSet& faults)
{
    AEDesc target{typeNull, nullptr};
    AppleEvent event{typeNull, nullptr};
    const OSType nSignature = 'TkNe';
    AECreateDesc(typeApplSignature, &nSignature, sizeof nSignature, &target);
    AECreateAppleEvent('TKNE', 'LCmd', &target, kAutoGenerateReturnID, kAnyTransactionID, &event);
    EXPECT_EQ(PutReply(&event, reply, faults), noErr);
    Carried carried{Text(event, 'Rslt'), Text(event, 'Errr'), typeNull};
    AESizeOfParam(&event, 'Rslt', &carried.nResultType, nullptr);
    AEDisposeDesc(&event);
    AEDisposeDesc(&target);
    return carried;
}

TEST(FaultyReply, WithoutFaultsHoldsWhatTheCommandGave)
{
    const Carried good = Put({"Größe\n", ""}, {});
    EXPECT_EQ(good.result, u"Größe\n");
    EXPECT_EQ(good.nResultType, typeUnicodeText);
    EXPECT_EQ(good.error, std::nullopt);
    const Carried bad = Put({"", "no such track"}, {});
    EXPECT_EQ(bad.result, u"");
    EXPECT_EQ(bad.error, u"no such track");
}

TEST(FaultyReply, WhatIsRefusedHasNoResult)
{
    const Carried refused = Put({"", "no such file", true}, {});
    EXPECT_EQ(refused.result, std::nullopt);
    EXPECT_EQ(refused.error, u"no such file");
    EXPECT_EQ(Put({"", "no such file", true}, {Fault::EmptyResult}).result, std::nullopt);
    EXPECT_EQ(Put({"", "no such file", true}, {Fault::RefusalWithResult}).result, u"");
}

TEST(FaultyReply, ResultMayBeMissingOrEmpty)
{
    EXPECT_EQ(Put({"1\n", ""}, {Fault::NoResult}).result, std::nullopt);
    EXPECT_EQ(Put({"1\n", ""}, {Fault::EmptyResult}).result, u"");
    EXPECT_EQ(Put({"", "why"}, {Fault::NoResult}).error, u"why");
}

TEST(FaultyReply, ResultMayBeOfAnotherType)
{
    EXPECT_EQ(Put({"1\n", ""}, {Fault::WrongType}).nResultType, typeChar);
}

TEST(FaultyReply, ErrorMayStandBesideAGoodResult)
{
    const Carried carried = Put({"1\n", ""}, {Fault::ErrorBesideResult});
    EXPECT_EQ(carried.result, u"1\n");
    EXPECT_EQ(carried.error, u"this error was planned");
    EXPECT_EQ(Put({"", "why"}, {Fault::ErrorBesideResult}).error, u"why") << "a real one stays";
}

TEST(FaultyReply, SurrogatesAreNoPair)
{
    const std::u16string units = *Put({"1\n", ""}, {Fault::LoneSurrogates}).result;
    EXPECT_EQ(units, (std::u16string{u'1', u'\n', 0xDC00, 0xD800}));
}

TEST(FaultyReply, AHugeOneReadsAsTheSmall)
{
    const std::u16string units = *Put({"1\n", ""}, {Fault::HugeReply}).result;
    EXPECT_EQ(units.size() * sizeof(char16_t), 16'000'000u);
    EXPECT_EQ(units[0], u'1');
    EXPECT_TRUE(std::all_of(units.begin() + 1, units.end(), [](char16_t c) { return c == u'\n'; }));
}

} // namespace
} // namespace Tarvane::Server
