#include "apps/support/recording/EventLines.h"

#include <gtest/gtest.h>

using namespace Tarvane;

namespace
{

const std::string strHi("h\0i\0", 4);

} // namespace

TEST(EventLines, EventHasItsAddressAndItsParameters)
{
    EXPECT_EQ(EventLine({7, 'TkNe', 'TKNE', 'LCmd', {{'----', 'utxt', strHi}}}).dump(),
              R"({"kind":"event","number":7,"target":"TkNe","class":"TKNE","id":"LCmd",)"
              R"("parameters":{"----":{"type":"utxt","text":"hi"}}})");
}

TEST(EventLines, ReplyHasItsStatusAndHowLongItTook)
{
    EXPECT_EQ(ReplyLine({7, 0, 412, {{'Rslt', 'utxt', strHi}, {'Blob', 'TEXT', "hi"}}}).dump(),
              R"({"kind":"reply","number":7,"status":0,"took":412,)"
              R"("parameters":{"Rslt":{"type":"utxt","text":"hi"},)"
              R"("Blob":{"type":"TEXT","hex":"6869"}}})");
    EXPECT_EQ(ReplyLine({8, -1712, 60000000, {}}).dump(),
              R"({"kind":"reply","number":8,"status":-1712,"took":60000000,"parameters":{}})");
}
