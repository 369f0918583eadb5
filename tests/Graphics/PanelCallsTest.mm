#import "Graphics/TGLGraphics.h"
#include "tests/Graphics/AssertionReport.h"
#include "tests/Graphics/RecordedCalls.h"

#include <CoreFoundation/CoreFoundation.h>

#include <csignal>
#include <cstdarg>

using namespace TarvaneTests;
using testing::ElementsAre;
using testing::KilledBySignal;

namespace
{

NSInteger nAnswer;    // of the panel
std::string strShown; // the text of the last panel or alert, as the user reads it

} // namespace

// In place of the platform's.
NSInteger NSRunAlertPanel(NSString* title, NSString* format, NSString* defaultButton,
                          NSString* alternateButton, NSString* otherButton, ...)
{
    Note("panel " + Text(title) + " " + Text(defaultButton) + " " + Text(alternateButton) + " " +
         Text(otherButton));
    va_list arguments;
    va_start(arguments, otherButton);
    strShown = Text([[[NSString alloc] initWithFormat:format arguments:arguments] autorelease]);
    va_end(arguments);
    return nAnswer;
}

SInt32 CFUserNotificationDisplayAlert(CFTimeInterval dTimeout, CFOptionFlags flags, CFURLRef icon,
                                      CFURLRef sound, CFURLRef localisation, CFStringRef header,
                                      CFStringRef message, CFStringRef defaultButton,
                                      CFStringRef alternateButton, CFStringRef otherButton,
                                      CFOptionFlags* pResponse)
{
    const bool fBare = !icon && !sound && !localisation && !defaultButton && !alternateButton &&
                       !otherButton && pResponse;
    Note("alert " + Text((NSString*)header) + " timeout " + Text(dTimeout) + " flags " +
         std::to_string(flags) + (fBare ? " and nothing else" : " and more"));
    strShown = Text((NSString*)message);
    return 0;
}

namespace
{

struct PanelCalls : RecordedCalls
{
    PanelCalls()
    {
        nAnswer = 1;
        strShown.clear();
    }
};
using PanelCallsDeathTest = PanelCalls;

const char* const kNoFormat = nullptr;

// The text that each of the two shows.
std::vector<std::string> Shown(const std::string& strText)
{
    std::vector<std::string> shown;
    TGL::MessageBoxOKCancel("t", "%s", strText.c_str());
    shown.push_back(strShown);
    TGL::Alert("t", "%s", strText.c_str());
    shown.push_back(strShown);
    return shown;
}

std::string Many(size_t nBytes) { return std::string(nBytes, 'a'); }

} // namespace

TEST_F(PanelCalls, MessageBoxHasTwoButtonsAndTheExpandedText)
{
    TGL::MessageBoxOKCancel("Grüße", "%d of %s", 3, "für");
    EXPECT_THAT(Calls(), ElementsAre("panel Grüße OK Cancel nil"));
    EXPECT_EQ(strShown, "3 of für");
}

TEST_F(PanelCalls, MessageBoxIsTrueForTheDefaultButtonAlone)
{
    for (const int nButton : {1, 0, -1, 2, -1000})
    {
        nAnswer = nButton;
        EXPECT_EQ(TGL::MessageBoxOKCancel("t", "x"), nButton == 1) << nButton;
    }
}

TEST_F(PanelCalls, AlertIsAPlainOneWithoutATimeout)
{
    TGL::Alert("Grüße", "%d of %s", 3, "für");
    EXPECT_THAT(Calls(), ElementsAre("alert Grüße timeout 0 flags 3 and nothing else"));
    EXPECT_EQ(strShown, "3 of für");
}

TEST_F(PanelCalls, MessageBoxReadsTwoPercentSignsAsOneOnceMore)
{
    TGL::MessageBoxOKCancel("t", "100%%%% %s", "%%%%");
    EXPECT_EQ(strShown, "100% %%");
    TGL::Alert("t", "100%%%% %s", "%%%%");
    EXPECT_EQ(strShown, "100%% %%%%");
}

TEST_F(PanelCalls, ADirectiveThatSurvivesIsShown)
{
    EXPECT_THAT(Shown("%s %@ %n 100%"), ElementsAre("%s %@ %n 100%", "%s %@ %n 100%"));
}

TEST_F(PanelCalls, TextsUpToTheSizeOfTheBufferAreShownWhole)
{
    for (const size_t nBytes : {size_t(0), size_t(1), size_t(9998), size_t(9999)})
        EXPECT_THAT(Shown(Many(nBytes)), ElementsAre(Many(nBytes), Many(nBytes))) << nBytes;
    EXPECT_THAT(Shown(Many(9997) + "ü"), ElementsAre(Many(9997) + "ü", Many(9997) + "ü"));
}

TEST_F(PanelCalls, LongerTextsAreCut)
{
    for (const size_t nBytes : {10000, 10001, 50000})
        EXPECT_THAT(Shown(Many(nBytes)), ElementsAre(Many(9999), Many(9999))) << nBytes;
}

TEST_F(PanelCalls, NoCharacterIsCutInTwo)
{
    for (const std::string strCharacter : {"ü", "€", "𝄞"})
        for (size_t nInside = 1; nInside < strCharacter.size(); ++nInside)
        {
            const std::string strWhole = Many(9999 - nInside);
            EXPECT_THAT(Shown(strWhole + strCharacter), ElementsAre(strWhole, strWhole))
                << strCharacter << " " << nInside;
            EXPECT_THAT(Shown(strWhole + strCharacter + "after"), ElementsAre(strWhole, strWhole));
        }
    EXPECT_THAT(Shown(Many(9999) + "ü"), ElementsAre(Many(9999), Many(9999)));
}

TEST_F(PanelCalls, TextThatDoesNotConvertIsEmpty)
{
    const wchar_t szNone[] = {wchar_t(0xd800), 0};
    TGL::Alert("t", "before %ls", szNone);
    EXPECT_EQ(strShown, "");
}

TEST_F(PanelCalls, ATitleMayBeMissing)
{
    TGL::Alert(nullptr, "x");
    TGL::MessageBoxOKCancel(nullptr, "x");
    EXPECT_THAT(Calls(),
                ElementsAre("alert  timeout 0 flags 3 and nothing else", "panel  OK Cancel nil"));
}

TEST_F(PanelCallsDeathTest, MessageBoxWithoutAFormatIsAsserted)
{
    EXPECT_EXIT(TGL::MessageBoxOKCancel("t", kNoFormat), KilledBySignal(SIGABRT),
                Reports("szFormat != NULL", "MessageBoxOKCancel"));
}

TEST_F(PanelCallsDeathTest, AlertWithoutAFormatIsAsserted)
{
    EXPECT_EXIT(TGL::Alert("t", kNoFormat), KilledBySignal(SIGABRT),
                Reports("szFormat != NULL", "Alert"));
}
