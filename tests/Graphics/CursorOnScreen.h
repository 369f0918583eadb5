// The cursor that the display server shows.
#pragma once

#include <cstdint>
#include <vector>

namespace TarvaneTests
{

struct CursorOnScreen
{
    int nWidth = 0;
    int nHeight = 0;
    int nHotSpotX = 0;
    int nHotSpotY = 0;
    std::vector<std::uint32_t> pixels; ///< alpha, red, green, blue, from the top left

    bool operator==(const CursorOnScreen&) const = default;
};

CursorOnScreen TakeCursor();

} // namespace TarvaneTests
