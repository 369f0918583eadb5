// The plug-in's window: an empty one inside the host's, which the view's process puts its own into.
// Until then, and when that process is gone, it says why it is empty.
//
// It talks to the display by a connection of its own and knows no toolkit. Nothing here waits for
// another process but the display's.
#include "plugin/lv2/ViewAccess.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <lv2/core/lv2.h>
#include <lv2/core/lv2_util.h>
#include <lv2/data-access/data-access.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/ui/ui.h>
#include <xcb/xcb.h>

namespace
{

// The view's size in points of the display, and the colour of its left edge.
constexpr std::uint16_t kWidth = 440;
constexpr std::uint16_t kHeight = 152;
constexpr std::uint32_t kBackground = 0x4D4D4D;
constexpr std::uint32_t kForeground = 0xCCCCCC;

constexpr const char* kFont = "fixed";
constexpr std::size_t kLineLength = 68; // characters of six points, within the margins
constexpr std::int16_t kMargin = 12;
constexpr std::int16_t kLineHeight = 16;

template <typename Reply> using CReply = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply> CReply<Reply> Own(Reply* pReply)
{
    return {pReply, &std::free};
}

// Words of a text in lines of a bounded length. The display's font has Latin letters only.
std::vector<std::string> Lines(std::string_view text)
{
    std::vector<std::string> lines(1);
    while (!text.empty())
    {
        const std::string_view word = text.substr(0, std::min(text.find(' '), kLineLength));
        if (lines.back().size() + 1 + word.size() > kLineLength)
            lines.emplace_back();
        if (!lines.back().empty())
            lines.back() += ' ';
        for (const char c : word)
            lines.back() += c >= ' ' && c <= '~' ? c : '?';
        text.remove_prefix(word.size());
        if (text.starts_with(' '))
            text.remove_prefix(1);
    }
    return lines;
}

class CWindow
{
public:
    // access and instance may be null, where the host does not hand them out.
    CWindow(xcb_connection_t* pDisplay, std::uint32_t nParent, const TarvaneViewAccess* pAccess,
            LV2_Handle instance);
    ~CWindow();
    CWindow(const CWindow&) = delete;
    CWindow& operator=(const CWindow&) = delete;

    std::uint32_t Id() const { return m_nWindow; }

    // False when the display is gone.
    bool Idle();

private:
    std::string Words() const;
    void Draw();
    void LetGoOfView();

    xcb_connection_t* m_pDisplay;
    const std::uint32_t m_nParent;
    const TarvaneViewAccess* m_pAccess;
    LV2_Handle m_instance;
    std::uint32_t m_nWindow = 0;
    std::uint32_t m_nContext = 0;
    std::string m_strShown;
};

CWindow::CWindow(xcb_connection_t* pDisplay, std::uint32_t nParent,
                 const TarvaneViewAccess* pAccess, LV2_Handle instance)
    : m_pDisplay(pDisplay), m_nParent(nParent), m_pAccess(pAccess), m_instance(instance)
{
    m_nWindow = xcb_generate_id(m_pDisplay);
    const std::uint32_t values[] = {kBackground, XCB_EVENT_MASK_EXPOSURE};
    xcb_create_window(m_pDisplay, XCB_COPY_FROM_PARENT, m_nWindow, m_nParent, 0, 0, kWidth, kHeight,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    const std::uint32_t nFont = xcb_generate_id(m_pDisplay);
    xcb_open_font(m_pDisplay, nFont, static_cast<std::uint16_t>(std::strlen(kFont)), kFont);
    m_nContext = xcb_generate_id(m_pDisplay);
    const std::uint32_t colours[] = {kForeground, kBackground, nFont};
    xcb_create_gc(m_pDisplay, m_nContext, m_nWindow,
                  XCB_GC_FOREGROUND | XCB_GC_BACKGROUND | XCB_GC_FONT, colours);
    xcb_close_font(m_pDisplay, nFont);
    xcb_map_window(m_pDisplay, m_nWindow);
    // Other processes are told of the window: it must be there.
    Own(xcb_get_input_focus_reply(m_pDisplay, xcb_get_input_focus(m_pDisplay), nullptr));
    if (m_pAccess != nullptr)
        m_pAccess->open(m_instance, m_nWindow);
}

CWindow::~CWindow()
{
    LetGoOfView();
    if (m_pAccess != nullptr)
        m_pAccess->close(m_instance, m_nWindow);
    xcb_disconnect(m_pDisplay);
}

// The view's window would be destroyed with ours. With the display held, its process cannot put it
// back in meanwhile.
void CWindow::LetGoOfView()
{
    xcb_grab_server(m_pDisplay);
    const auto pTree =
        Own(xcb_query_tree_reply(m_pDisplay, xcb_query_tree(m_pDisplay, m_nWindow), nullptr));
    if (pTree != nullptr)
    {
        const xcb_window_t* pChildren = xcb_query_tree_children(pTree.get());
        for (int n = 0; n < xcb_query_tree_children_length(pTree.get()); ++n)
        {
            xcb_unmap_window(m_pDisplay, pChildren[n]);
            xcb_reparent_window(m_pDisplay, pChildren[n], pTree->root, 0, 0);
        }
    }
    xcb_destroy_window(m_pDisplay, m_nWindow);
    xcb_ungrab_server(m_pDisplay);
    Own(xcb_get_input_focus_reply(m_pDisplay, xcb_get_input_focus(m_pDisplay), nullptr));
}

bool CWindow::Idle()
{
    bool fExposed = false;
    while (const auto pEvent = Own(xcb_poll_for_event(m_pDisplay)))
        fExposed = fExposed || (pEvent->response_type & 0x7F) == XCB_EXPOSE;
    const std::string strWords = Words();
    if (strWords != m_strShown)
    {
        m_strShown = strWords;
        xcb_clear_area(m_pDisplay, 0, m_nWindow, 0, 0, 0, 0);
        fExposed = true;
    }
    if (fExposed)
        Draw();
    return xcb_connection_has_error(m_pDisplay) == 0;
}

std::string CWindow::Words() const
{
    if (m_pAccess == nullptr)
        return "This host keeps windows apart from plug-ins: the view cannot be shown here. Use "
               "the plug-in's Arm control.";
    char szWords[1024];
    m_pAccess->describe(m_instance, szWords, sizeof szWords);
    return szWords;
}

void CWindow::Draw()
{
    std::int16_t nTop = kMargin + kLineHeight / 2;
    for (const std::string& strLine : Lines(m_strShown))
    {
        xcb_image_text_8(m_pDisplay, static_cast<std::uint8_t>(strLine.size()), m_nWindow,
                         m_nContext, kMargin, nTop, strLine.c_str());
        nTop = static_cast<std::int16_t>(nTop + kLineHeight);
    }
    xcb_flush(m_pDisplay);
}

const TarvaneViewAccess* AccessOf(const LV2_Feature* const* ppFeatures)
{
    const auto* pData = static_cast<const LV2_Extension_Data_Feature*>(
        lv2_features_data(ppFeatures, LV2_DATA_ACCESS_URI));
    return pData == nullptr
               ? nullptr
               : static_cast<const TarvaneViewAccess*>(pData->data_access(TARVANE_VIEW_ACCESS_URI));
}

LV2UI_Handle Instantiate(const LV2UI_Descriptor*, const char*, const char*, LV2UI_Write_Function,
                         LV2UI_Controller, LV2UI_Widget* pWidget,
                         const LV2_Feature* const* ppFeatures)
try
{
    void* pParent = lv2_features_data(ppFeatures, LV2_UI__parent);
    LV2_Handle instance = lv2_features_data(ppFeatures, LV2_INSTANCE_ACCESS_URI);
    const TarvaneViewAccess* pAccess = instance == nullptr ? nullptr : AccessOf(ppFeatures);
    if (pParent == nullptr)
        return nullptr;
    xcb_connection_t* pDisplay = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(pDisplay) != 0)
    {
        xcb_disconnect(pDisplay);
        return nullptr;
    }
    const auto nParent = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pParent));
    auto* pWindow = new CWindow(pDisplay, nParent, pAccess, instance);
    *pWidget = reinterpret_cast<LV2UI_Widget>(std::uintptr_t{pWindow->Id()});
    const auto* pResize =
        static_cast<const LV2UI_Resize*>(lv2_features_data(ppFeatures, LV2_UI__resize));
    if (pResize != nullptr)
        pResize->ui_resize(pResize->handle, kWidth, kHeight);
    return pWindow;
}
catch (const std::exception&)
{
    return nullptr;
}

void Cleanup(LV2UI_Handle handle)
{
    delete static_cast<CWindow*>(handle);
}

int Idle(LV2UI_Handle handle)
{
    return static_cast<CWindow*>(handle)->Idle() ? 0 : 1;
}

const void* ExtensionData(const char* szUri)
{
    static constexpr LV2UI_Idle_Interface idle{&Idle};
    return std::strcmp(szUri, LV2_UI__idleInterface) == 0 ? &idle : nullptr;
}

// The ports' values are the host's and the plug-in's business.
constexpr LV2UI_Descriptor kDescriptor{"https://tarvane.org/lv2/link#ui", &Instantiate, &Cleanup,
                                       nullptr, &ExtensionData};

} // namespace

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t nIndex)
{
    return nIndex == 0 ? &kDescriptor : nullptr;
}
