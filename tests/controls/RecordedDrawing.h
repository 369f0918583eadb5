// Notes what the controls ask of AppKit while they draw, in the list of RecordingCoreGraphics:
// images, texts and the look-up of resources. Nothing is painted.
#pragma once

#include "tests/support/LiveObjects.h"

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

namespace TarvaneTests
{

/// While it lives, the platform's methods are replaced and a context stands ready to draw in. One
/// at a time.
///
///     "BundleOf <class>"
///     "Resource <name>.<type>"
///     "LoadImage <path>"           path "none" when the resource is missing
///     "DrawImage <name> in x y w h from x y w h operation n fraction f[ flipped]"
///     "SetFlipped <name> <0 or 1>"
///     "DrawText <text> in x y w h"
///     "Measure <text>"             answers kTextSize
class RecordedDrawing
{
  public:
    RecordedDrawing();
    ~RecordedDrawing();
    RecordedDrawing(const RecordedDrawing&) = delete;
    RecordedDrawing& operator=(const RecordedDrawing&) = delete;

    /// From now on resources and fonts of this name are not found.
    void LoseResource(const std::string& strName);

    /// fontWithName:size: answers with this font for this name and size, and with nil for the name
    /// in any other size. A name that was lost is answered with nil. The font must outlive this.
    void LendFont(const std::string& strName, CGFloat dSize, NSFont* font);

    /// The size of every image, kImageSize at first, and how many digits of a number are noted, 9
    /// at first.
    void SetImageSize(NSSize size);
    void SetDigits(int nDigits);

    /// How often the context to draw in was asked for.
    int ContextsAsked() const;

    /// The attributes of the last text that was drawn; autoreleased.
    NSDictionary* LastAttributes() const;

    static constexpr NSSize kTextSize = {40, 14};
    static constexpr NSSize kImageSize = {17, 13};
};

/// How many objects a drawing leaves behind, once it has been drawn before and its pool is drained.
template <typename Drawing> long ObjectsKeptBy(Drawing draw)
{
    const auto drawInPool = [&]
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        draw();
        [pool drain];
    };
    drawInPool();
    const long nBefore = LiveObjects();
    drawInPool();
    return LiveObjects() - nBefore;
}

/// The calls that begin with one of the words.
std::vector<std::string> CallsThatBegin(const std::vector<std::string>& words);

} // namespace TarvaneTests
