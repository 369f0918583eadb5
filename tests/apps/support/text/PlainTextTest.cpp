#include "apps/support/text/PlainText.h"

#include <gtest/gtest.h>

namespace Tarvane
{
namespace
{

TEST(PlainText, ControlCharactersAreShownAsPoints)
{
    EXPECT_EQ(PlainText("a\x1b[31mb\r\x07\x7f"), "a.[31mb...");
    EXPECT_EQ(PlainText(std::string_view("a\0b", 3)), "a.b");
    EXPECT_EQ(PlainText("\xC2\x9B"
                        "31m"),
              ".31m")
        << "one character introduces a sequence too";
}

TEST(PlainText, LinesTabsAndOtherTextStay)
{
    EXPECT_EQ(PlainText("a\tb\n\xC2\xA0\xC3\xB6\xF0\x9F\x8E\x99\xC2"),
              "a\tb\n\xC2\xA0\xC3\xB6\xF0\x9F\x8E\x99\xC2");
}

} // namespace
} // namespace Tarvane
