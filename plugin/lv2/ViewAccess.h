// By what the plug-in's window, in a library of its own, reaches the instance behind it.
#pragma once

#include <cstddef>
#include <cstdint>

#include <lv2/core/lv2.h>

/// To be asked for by extension_data. Every operation: the host's thread of windows, and it returns
/// at once.
#define TARVANE_VIEW_ACCESS_URI "https://tarvane.org/lv2/link#viewAccess"

struct TarvaneViewAccess
{
    /// The view is to stand in this window of the display, which may still be empty for a while.
    void (*open)(LV2_Handle instance, std::uint32_t nWindow);
    /// The window is about to go; the view has been taken out of it.
    void (*close)(LV2_Handle instance, std::uint32_t nWindow);
    /// What to show while the window is empty: writes a text with its terminator, cut off at nSize
    /// bytes.
    void (*describe)(LV2_Handle instance, char* szText, std::size_t nSize);
};
