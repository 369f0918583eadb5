#import "Graphics/TGLGraphics.h"
#include "tests/Graphics/AssertionReport.h"

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <csignal>

using TarvaneTests::Reports;
using testing::KilledBySignal;
using TGL::CAttributedString;

namespace
{

// A string of the test's own, with one reference.
struct AttributedString : testing::Test
{
    ~AttributedString() override { [string release]; }

    NSAttributedString* string = [[NSAttributedString alloc] initWithString:@"held"];
};
using AttributedStringDeathTest = AttributedString;

} // namespace

TEST_F(AttributedString, HoldsNoneAtFirst)
{
    const CAttributedString empty;
    EXPECT_EQ(empty.m_pString, nullptr);
}

TEST_F(AttributedString, ConstructorTakesAReferenceOfItsOwn)
{
    CAttributedString held(string);
    EXPECT_EQ(held.m_pString, string);
    EXPECT_EQ([string retainCount], 2u);
    held.DeleteString();
    EXPECT_EQ([string retainCount], 1u);
}

TEST_F(AttributedString, SetStringTakesTheCallersReferenceOver)
{
    CAttributedString held;
    held.SetString([string retain]);
    EXPECT_EQ(held.m_pString, string);
    EXPECT_EQ([string retainCount], 2u);
    held.DeleteString();
    EXPECT_EQ([string retainCount], 1u);
}

TEST_F(AttributedString, DeleteStringForgetsWhatItReleased)
{
    CAttributedString held(string);
    held.DeleteString();
    EXPECT_EQ(held.m_pString, nullptr);
}

TEST_F(AttributedString, DeleteStringWithoutAStringIsHarmless)
{
    CAttributedString held;
    held.DeleteString();
    held.SetString([string retain]);
    held.DeleteString();
    held.DeleteString();
    EXPECT_EQ([string retainCount], 1u);
}

TEST_F(AttributedString, AStringIsReplacedByDeletingItFirst)
{
    NSAttributedString* other = [[NSAttributedString alloc] initWithString:@"other"];
    CAttributedString held(string);
    held.DeleteString();
    held.SetString(other);
    EXPECT_EQ(held.m_pString, other);
    EXPECT_EQ([other retainCount], 1u);
    held.DeleteString();
}

TEST_F(AttributedStringDeathTest, GoingWithAStringFromAHandleIsAsserted)
{
    EXPECT_EXIT({ CAttributedString held(string); }, KilledBySignal(SIGABRT),
                Reports("m_pString == NULL", "~CAttributedString"));
}

TEST_F(AttributedStringDeathTest, GoingWithAStringThatWasSetIsAsserted)
{
    EXPECT_EXIT(
        {
            CAttributedString held;
            held.SetString(string);
        },
        KilledBySignal(SIGABRT), Reports("m_pString == NULL", "~CAttributedString"));
}

TEST_F(AttributedStringDeathTest, SettingASecondStringIsAsserted)
{
    EXPECT_EXIT(
        {
            CAttributedString held(string);
            held.SetString(string);
        },
        KilledBySignal(SIGABRT), Reports("m_pString == NULL", "SetString"));
}

TEST_F(AttributedStringDeathTest, DrawingWithoutAStringIsAsserted)
{
    EXPECT_EXIT(
        {
            CAttributedString empty;
            TGL::drawWithRect(nullptr, &empty, CGRectMake(0, 0, 10, 10));
        },
        KilledBySignal(SIGABRT), Reports("pAttrib != NULL", "drawWithRect"));
}
