// A piece of the real screen to draw on, and the pixels that came of it.
#pragma once

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <ostream>
#include <vector>

namespace TarvaneTests
{

struct Pixel
{
    int nRed, nGreen, nBlue;
    bool operator==(const Pixel&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Pixel& pixel);

constexpr Pixel kWhite = {255, 255, 255};
constexpr Pixel kBlack = {0, 0, 0};
constexpr Pixel kRed = {255, 0, 0};
constexpr Pixel kGreen = {0, 255, 0};
constexpr Pixel kBlue = {0, 0, 255};

/// Whether no component differs by more.
bool IsNear(Pixel a, Pixel b, int nMost = 3);

/// Pixels by their place from the visual top left, whichever way the view's y axis runs.
class Picture
{
  public:
    /// What is shown now of a view that has the focus.
    explicit Picture(NSRect rect);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    Pixel At(int x, int y) const { return m_pixels.at(size_t(y) * m_nWidth + x); }
    /// Where no pixel is unlike the ground, an empty rectangle.
    NSRect BoxOfAllBut(Pixel ground) const;
    int Count(Pixel pixel) const;
    bool operator==(const Picture&) const = default;

  private:
    int m_nWidth = 0;
    int m_nHeight = 0;
    std::vector<Pixel> m_pixels;
};

/// A white view in a window without a frame. The application object must be there.
class Canvas
{
  public:
    explicit Canvas(NSSize size, bool fFlipped = false);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// The canvas has the focus as long as it lives.
    CGContextRef Context() const;
    bool IsFlipped() const { return [m_view isFlipped]; }
    Picture Take() const { return Picture([m_view bounds]); }

    /// Put on the canvas in its lower left corner, shown, photographed and taken off again.
    Picture TakeView(NSView* view) const;

  private:
    NSWindow* m_window;
    NSView* m_view;
};

} // namespace TarvaneTests
