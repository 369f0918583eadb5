#include "platform/gnustep/CoreGraphics/CGObjects.h"

#include <algorithm>

CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy)
{
    return CGRectMake(rect.origin.x + dx, rect.origin.y + dy, rect.size.width - 2 * dx,
                      rect.size.height - 2 * dy);
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB() { return new CGColorSpace{1}; }

void CGColorSpaceRelease(CGColorSpaceRef space)
{
    if (ReleaseReference(space))
        delete space;
}

size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space) { return space ? 3 : 0; }

CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components)
{
    if (!space || !components)
        return nullptr;
    auto* color = new CGColor{1, {}};
    std::copy_n(components, 4, color->components);
    return color;
}

CGColorRef CGColorRetain(CGColorRef color)
{
    if (color)
        ++color->nReferences;
    return color;
}

void CGColorRelease(CGColorRef color)
{
    if (ReleaseReference(color))
        delete color;
}

const CGFloat* CGColorGetComponents(CGColorRef color)
{
    return color ? color->components : nullptr;
}

size_t CGColorGetNumberOfComponents(CGColorRef color) { return color ? 4 : 0; }
