#include "platform/gnustep/AppleEvents/Wire.h"

#include <gtest/gtest.h>

using namespace AppleEvents;

namespace
{

bool IsLegal(const std::string& name)
{
    return sd_bus_service_name_is_valid(name.c_str()) > 0;
}

} // namespace

TEST(Wire, NameIsTheSignatureInHexadecimalDigits)
{
    EXPECT_EQ("org.tarvane.AppleEvent._546b4e65", BusNameForSignature('TkNe'));
    EXPECT_EQ("org.tarvane.AppleEvent._00000000", BusNameForSignature(0));
    EXPECT_EQ("org.tarvane.AppleEvent._ffffffff", BusNameForSignature(0xffffffff));
}

TEST(Wire, EverySignatureGivesALegalName)
{
    for (UInt32 byte = 0; byte < 256; byte++)
        for (int place = 0; place < 4; place++)
            EXPECT_TRUE(IsLegal(BusNameForSignature(byte << (8 * place))));
    // What the underscore is for.
    EXPECT_FALSE(IsLegal("org.tarvane.AppleEvent.546b4e65"));
}

TEST(Wire, LimitCountsBytesAndOverhead)
{
    Parameters parameters;
    parameters['Aaaa'] = {typeChar, Bytes(kMaximumEventBytes - 2 * kParameterOverhead)};
    parameters['Bbbb'] = {typeChar, Bytes()};
    EXPECT_TRUE(FitsInMessage(parameters));
    parameters['Bbbb'].bytes.push_back(0);
    EXPECT_FALSE(FitsInMessage(parameters));
}

TEST(Wire, NoParametersFit)
{
    EXPECT_TRUE(FitsInMessage({}));
}
