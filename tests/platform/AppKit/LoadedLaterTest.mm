#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

TEST(PopUpMenuLoadedLater, WorksFromTheMomentTheLibraryIsLoaded)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    [[window.button cell] attachPopUpWithFrame:[window.button bounds] inView:window.button];
    [[window.button cell] dismissPopUp];
    EXPECT_EQ(window.delegate->m_nOpened, 0);

    ASSERT_NE(dlopen(PLATFORM_APPKIT_LIBRARY, RTLD_NOW), nullptr) << dlerror();
    window.ClickAndChoose();
    EXPECT_EQ(window.delegate->m_nOpened, 1);

    // Loaded again, it is the same library.
    ASSERT_NE(dlopen(PLATFORM_APPKIT_LIBRARY, RTLD_NOW), nullptr) << dlerror();
    [[window.button cell] attachPopUpWithFrame:[window.button bounds] inView:window.button];
    [[window.button cell] dismissPopUp];
    EXPECT_EQ(window.delegate->m_nOpened, 2);

    // A delegate from before the library is not noticed when it goes.
    [[window.button menu] setDelegate:nil];
}
