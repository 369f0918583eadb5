// The plug-in's window as a host loads it: alone, with what it asks of the plug-in noted, and with
// the plug-in and the view's process behind it.
#include "plugin/lv2/ViewAccess.h"
#include "tests/plugin/lv2/HostOfOne.h"
#include "tests/support/PrivateBus.h"

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <lv2/data-access/data-access.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/ui/ui.h>
#include <xcb/xcb.h>

using namespace TarvaneTest;
using namespace testing;

namespace
{

constexpr int kWidth = 440, kHeight = 152;

template <typename Reply> std::unique_ptr<Reply, decltype(&std::free)> Own(Reply* pReply)
{
    return {pReply, &std::free};
}

template <typename Condition> bool Comes(Condition&& fnThere)
{
    for (int n = 0; n < 6000 && !fnThere(); ++n)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return fnThere();
}

// The display, as the host of a window sees it.
class CDisplay
{
public:
    ~CDisplay() { xcb_disconnect(m_pDisplay); }

    std::uint32_t Root() const
    {
        return xcb_setup_roots_iterator(xcb_get_setup(m_pDisplay)).data->root;
    }
    // Shown, above all others, and out of the hands of the window manager.
    std::uint32_t MakeWindow(std::uint32_t nParent) const
    {
        const std::uint32_t nWindow = xcb_generate_id(m_pDisplay);
        const std::uint32_t values[] = {1};
        xcb_create_window(m_pDisplay, XCB_COPY_FROM_PARENT, nWindow, nParent, 0, 0, kWidth, kHeight,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(m_pDisplay, nWindow);
        Settle();
        return nWindow;
    }
    void DestroyWindow(std::uint32_t nWindow) const
    {
        xcb_destroy_window(m_pDisplay, nWindow);
        Settle();
    }
    void EndClientOf(std::uint32_t nWindow) const
    {
        xcb_kill_client(m_pDisplay, nWindow);
        Settle();
    }
    // 0 when there is no such window.
    std::uint32_t ParentOf(std::uint32_t nWindow) const
    {
        const auto pTree = Tree(nWindow);
        return pTree ? pTree->parent : 0;
    }
    std::vector<std::uint32_t> ChildrenOf(std::uint32_t nWindow) const
    {
        const auto pTree = Tree(nWindow);
        if (!pTree)
            return {};
        const xcb_window_t* pChildren = xcb_query_tree_children(pTree.get());
        return {pChildren, pChildren + xcb_query_tree_children_length(pTree.get())};
    }
    bool IsShown(std::uint32_t nWindow) const
    {
        const auto pAttributes = Own(xcb_get_window_attributes_reply(
            m_pDisplay, xcb_get_window_attributes(m_pDisplay, nWindow), nullptr));
        return pAttributes && pAttributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    std::pair<int, int> SizeOf(std::uint32_t nWindow) const
    {
        const auto pGeometry =
            Own(xcb_get_geometry_reply(m_pDisplay, xcb_get_geometry(m_pDisplay, nWindow), nullptr));
        return pGeometry ? std::pair<int, int>{pGeometry->width, pGeometry->height}
                         : std::pair<int, int>{};
    }
    // How many pixels are not of the colour in the corner.
    std::size_t Drawn(std::uint32_t nWindow) const
    {
        const auto pImage =
            Own(xcb_get_image_reply(m_pDisplay,
                                    xcb_get_image(m_pDisplay, XCB_IMAGE_FORMAT_Z_PIXMAP, nWindow, 0,
                                                  0, kWidth, kHeight, ~0U),
                                    nullptr));
        if (!pImage)
            return 0;
        const auto* pnPixels =
            reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(pImage.get()));
        return static_cast<std::size_t>(std::count_if(pnPixels, pnPixels + kWidth * kHeight,
                                                      [&](std::uint32_t nPixel)
                                                      { return nPixel != pnPixels[0]; }));
    }
    void Reparent(std::uint32_t nWindow, std::uint32_t nParent) const
    {
        xcb_reparent_window(m_pDisplay, nWindow, nParent, 0, 0);
        Settle();
    }

private:
    // What was asked for has been done.
    void Settle() const
    {
        Own(xcb_get_input_focus_reply(m_pDisplay, xcb_get_input_focus(m_pDisplay), nullptr));
    }
    std::unique_ptr<xcb_query_tree_reply_t, decltype(&std::free)> Tree(std::uint32_t nWindow) const
    {
        return Own(xcb_query_tree_reply(m_pDisplay, xcb_query_tree(m_pDisplay, nWindow), nullptr));
    }

    xcb_connection_t* m_pDisplay = xcb_connect(nullptr, nullptr);
};

// What a host hands to the window's library, and the window.
class CLinkWindow
{
public:
    struct Features
    {
        std::uint32_t nParent = 0;
        LV2_Handle instance = nullptr;
        const void* (*fnData)(const char*) = nullptr;
    };

    explicit CLinkWindow(const Features& features)
        : m_pLibrary(::dlopen(LV2_BUNDLE "/link_ui.so", RTLD_NOW | RTLD_LOCAL))
    {
        const auto pEntry =
            reinterpret_cast<LV2UI_DescriptorFunction>(::dlsym(m_pLibrary, "lv2ui_descriptor"));
        m_pDescriptor = pEntry(0);
        EXPECT_EQ(pEntry(1), nullptr);
        LV2_Extension_Data_Feature data{features.fnData};
        LV2UI_Resize resize{this, &Resize};
        const LV2_Feature parent{LV2_UI__parent,
                                 reinterpret_cast<void*>(std::uintptr_t{features.nParent})};
        const LV2_Feature resizes{LV2_UI__resize, &resize};
        const LV2_Feature access{LV2_INSTANCE_ACCESS_URI, features.instance};
        const LV2_Feature datas{LV2_DATA_ACCESS_URI, &data};
        std::vector<const LV2_Feature*> all{&resizes};
        if (features.nParent != 0)
            all.push_back(&parent);
        if (features.instance != nullptr)
            all.insert(all.end(), {&access, &datas});
        all.push_back(nullptr);
        LV2UI_Widget widget = nullptr;
        m_handle =
            m_pDescriptor->instantiate(m_pDescriptor, "https://tarvane.org/lv2/link#stereo",
                                       LV2_BUNDLE "/", nullptr, nullptr, &widget, all.data());
        m_nWindow = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(widget));
    }
    ~CLinkWindow()
    {
        if (m_handle != nullptr)
            m_pDescriptor->cleanup(m_handle);
        ::dlclose(m_pLibrary);
    }
    CLinkWindow(const CLinkWindow&) = delete;
    CLinkWindow& operator=(const CLinkWindow&) = delete;

    bool IsThere() const { return m_handle != nullptr; }
    std::uint32_t Id() const { return m_nWindow; }
    const LV2UI_Descriptor& Descriptor() const { return *m_pDescriptor; }
    // As often as a host calls it. Answers whether the window wants to be closed.
    bool Idle() const
    {
        const auto* pIdle = static_cast<const LV2UI_Idle_Interface*>(
            m_pDescriptor->extension_data(LV2_UI__idleInterface));
        return pIdle->idle(m_handle) != 0;
    }
    std::pair<int, int> SizeAskedFor() const { return m_asked; }

private:
    static int Resize(LV2UI_Feature_Handle handle, int nWidth, int nHeight)
    {
        static_cast<CLinkWindow*>(handle)->m_asked = {nWidth, nHeight};
        return 0;
    }

    void* m_pLibrary;
    const LV2UI_Descriptor* m_pDescriptor = nullptr;
    LV2UI_Handle m_handle = nullptr;
    std::uint32_t m_nWindow = 0;
    std::pair<int, int> m_asked;
};

// In the plug-in's place: notes what it is asked.
struct CNotedPlugIn
{
    std::vector<std::string> calls;
    std::string strWords;
    std::function<void()> onClose;

    static const void* Data(const char* szUri)
    {
        static constexpr TarvaneViewAccess access{
            [](LV2_Handle self, std::uint32_t nWindow) {
                static_cast<CNotedPlugIn*>(self)->calls.push_back("open " +
                                                                  std::to_string(nWindow));
            },
            [](LV2_Handle handle, std::uint32_t nWindow)
            {
                auto& self = *static_cast<CNotedPlugIn*>(handle);
                self.calls.push_back("close " + std::to_string(nWindow));
                if (self.onClose)
                    self.onClose();
            },
            [](LV2_Handle self, char* szText, std::size_t nSize) {
                std::snprintf(szText, nSize, "%s",
                              static_cast<CNotedPlugIn*>(self)->strWords.c_str());
            }};
        return std::string(szUri) == TARVANE_VIEW_ACCESS_URI ? &access : nullptr;
    }
};

class LinkUI : public Test
{
protected:
    CLinkWindow::Features Host() { return {nParent, &plugIn, &CNotedPlugIn::Data}; }

    CDisplay display;
    CNotedPlugIn plugIn;
    const std::uint32_t nParent = display.MakeWindow(display.Root());
};

} // namespace

TEST_F(LinkUI, TheWindowLiesInTheHostsInTheViewsSizeAndIsToldToThePlugInOnce)
{
    const CLinkWindow window(Host());
    ASSERT_TRUE(window.IsThere());
    EXPECT_THAT(display.ChildrenOf(nParent), ElementsAre(window.Id()));
    EXPECT_TRUE(display.IsShown(window.Id()));
    EXPECT_EQ(display.SizeOf(window.Id()), (std::pair{kWidth, kHeight}));
    EXPECT_EQ(window.SizeAskedFor(), (std::pair{kWidth, kHeight}));
    EXPECT_FALSE(window.Idle());
    EXPECT_THAT(plugIn.calls, ElementsAre("open " + std::to_string(window.Id())));
}

TEST_F(LinkUI, WhileThereIsNoViewItShowsWhy)
{
    const CLinkWindow window(Host());
    // What it draws is seen a moment later, by another connection to the display.
    const auto fnDrawn = [&] { return display.Drawn(window.Id()); };
    window.Idle();
    EXPECT_TRUE(Comes([&] { return fnDrawn() == 0; }));
    plugIn.strWords = "The view cannot be started.";
    window.Idle();
    EXPECT_TRUE(Comes([&] { return fnDrawn() > 0; }));
    // Longer than a line, and longer than the window knows of.
    plugIn.strWords = std::string(300, 'm') + " " + std::string(2000, 'm');
    window.Idle();
    EXPECT_TRUE(Comes([&] { return fnDrawn() > 2000; }));
    plugIn.strWords = "";
    window.Idle();
    EXPECT_TRUE(Comes([&] { return fnDrawn() == 0; })) << "what it said before is gone";
}

TEST_F(LinkUI, BeforeItGoesTheViewIsTakenOutOfIt)
{
    auto window = std::make_unique<CLinkWindow>(Host());
    const std::uint32_t nWindow = window->Id();
    const CDisplay view;
    const std::uint32_t nView = view.MakeWindow(view.Root());
    view.Reparent(nView, nWindow);
    ASSERT_THAT(display.ChildrenOf(nWindow), ElementsAre(nView));
    std::uint32_t nParentAtClose = 0;
    plugIn.onClose = [&] { nParentAtClose = display.ParentOf(nView); };
    window.reset();
    EXPECT_EQ(nParentAtClose, display.Root()) << "before the plug-in hears of it";
    EXPECT_THAT(plugIn.calls,
                ElementsAre("open " + std::to_string(nWindow), "close " + std::to_string(nWindow)));
    EXPECT_THAT(display.ChildrenOf(nParent), IsEmpty());
    EXPECT_EQ(display.ParentOf(nView), display.Root()) << "it lives on";
    EXPECT_FALSE(display.IsShown(nView)) << "out of sight";
}

TEST_F(LinkUI, AHostThatKeepsWindowsApartFromPlugInsGetsAWindowThatSaysSo)
{
    const CLinkWindow window({nParent, nullptr, nullptr});
    ASSERT_TRUE(window.IsThere());
    window.Idle();
    EXPECT_TRUE(Comes([&] { return display.Drawn(window.Id()) > 0; }));
    EXPECT_THAT(plugIn.calls, IsEmpty());
}

TEST_F(LinkUI, WithoutAWindowOfTheHostsThereIsNone)
{
    const CLinkWindow window({0, &plugIn, &CNotedPlugIn::Data});
    EXPECT_FALSE(window.IsThere());
    EXPECT_THAT(plugIn.calls, IsEmpty());
}

TEST_F(LinkUI, ItKnowsOfNoOtherExtension)
{
    const CLinkWindow window(Host());
    EXPECT_EQ(window.Descriptor().extension_data("https://tarvane.org/lv2/link#other"), nullptr);
}

TEST_F(LinkUI, AHostThatDestroysItsWindowFirstComesToNoHarm)
{
    auto window = std::make_unique<CLinkWindow>(Host());
    const std::uint32_t nWindow = window->Id();
    display.DestroyWindow(nParent);
    plugIn.strWords = "Armed.";
    EXPECT_FALSE(window->Idle());
    window.reset();
    EXPECT_THAT(plugIn.calls, Contains("close " + std::to_string(nWindow)));
}

TEST_F(LinkUI, WhenTheDisplayIsGoneItWantsToBeClosed)
{
    auto window = std::make_unique<CLinkWindow>(Host());
    const std::uint32_t nWindow = window->Id();
    display.EndClientOf(nWindow);
    EXPECT_TRUE(Comes([&] { return window->Idle(); }));
    window.reset();
    EXPECT_THAT(plugIn.calls, Contains("close " + std::to_string(nWindow)));
}

namespace
{

class LinkUIWithItsView : public Test
{
protected:
    LinkUIWithItsView() { ::setenv("TARVANE_LINK_CAPTURES", captures.Path().c_str(), 1); }
    CLinkWindow::Features Host() const
    {
        return {display.MakeWindow(display.Root()), host.Instance(),
                host.Descriptor().extension_data};
    }
    // The view's window in this one; 0 when none comes.
    std::uint32_t ViewIn(const CLinkWindow& window) const
    {
        std::uint32_t nView = 0;
        Comes(
            [&]
            {
                EXPECT_FALSE(window.Idle());
                const auto children = display.ChildrenOf(window.Id());
                nView = children.size() == 1 && display.IsShown(children[0]) ? children[0] : 0;
                return nView != 0;
            });
        return nView;
    }

    const TarvaneTests::PrivateBus bus;
    const CTemporaryFolder captures;
    CUrids urids;
    CHostOfOne host{urids, "stereo", 2};
    const CDisplay display;
};

} // namespace

TEST_F(LinkUIWithItsView, ClosedAndOpenedAgainAndAgainTheViewIsThere)
{
    for (int n = 0; n < 4; ++n)
    {
        const CLinkWindow window(Host());
        const std::uint32_t nView = ViewIn(window);
        ASSERT_NE(nView, 0U) << n;
        EXPECT_EQ(display.SizeOf(nView), (std::pair{kWidth, kHeight}));
        // It is the view that is seen, with its controls, and no words instead.
        EXPECT_TRUE(Comes([&] { return display.Drawn(nView) > kWidth * kHeight / 2; })) << n;
    }
}

TEST_F(LinkUIWithItsView, OpenedInASecondWindowItMovesThere)
{
    const CLinkWindow first(Host());
    ASSERT_NE(ViewIn(first), 0U);
    const CLinkWindow second(Host());
    EXPECT_NE(ViewIn(second), 0U);
    EXPECT_TRUE(Comes([&] { return display.ChildrenOf(first.Id()).empty(); }));
}
