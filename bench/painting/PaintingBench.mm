// What painting by the palette costs, beside the same picture drawn by the platform's operators
// alone. First each pair must draw the same pixels; then both are drawn in turn, many times, in
// this process. Times are of this process's own work; what the display does is the same for both.
#import "TarvaneLinkAU/TarvaneLinkView.h"
#import "TarvaneLinkAU/TarvaneLinkViewFactory.h"
#import "bench/painting/DirectDrawing.h"
#import "bench/painting/DirectView.h"
#include "colours/ComponentsColors.h"
#import "controls/ColoredTextField.h"
#import "controls/GraphicUtils.h"
#import "controls/TKButtonCell.h"
#import "controls/TKPopUpButtonCell.h"
#import "controls/TKToggleSwitch.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <time.h>
#include <unistd.h>

namespace
{

constexpr CComponentCode kNone(0, 0);
constexpr CGFloat kText = 0.6980392156862745; // ccLabelText
const NSRect kRect = NSMakeRect(10, 10, 120, 24);
constexpr int kRounds = 301;

struct Pair
{
    const char* szName;
    double dMost; // times the direct drawing
    int nDraws;   // a round
    std::function<void()> ours;
    std::function<void()> direct;
};

#pragma mark Scene

NSWindow* OpenWindow(NSView* content)
{
    NSWindow* window = [[NSWindow alloc] initWithContentRect:[content frame]
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window setContentView:content];
    [window orderFront:nil];
    [window display];
    return window;
}

// An empty one, as a view that a control draws in.
NSView* Ground()
{
    static NSView* const ground = []
    {
        NSView* view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)];
        OpenWindow(view);
        return view;
    }();
    return ground;
}

NSImage* NamedImage(NSString* name)
{
    NSString* path = [[NSBundle mainBundle] pathForResource:name ofType:@"png"];
    return [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
}

// Joined to no plug-in and no server; with one track, so that the menu has a title.
NSView* MakeLinkView()
{
    // Named by the nib alone, and linked for it.
    [ColoredTextField class];
    [TarvaneLink_CocoaView class];
    TarvaneLink_CocoaViewFactory* factory =
        [[[TarvaneLink_CocoaViewFactory alloc] init] autorelease];
    NSView* view = [factory uiViewForAudioUnit:nullptr withSize:NSZeroSize];
    for (NSUInteger n = 0; n < [[view subviews] count]; ++n)
    {
        NSPopUpButton* part = [[view subviews] objectAtIndex:n];
        if ([part isKindOfClass:[NSPopUpButton class]])
            [part addItemWithTitle:@"Dialogue"];
    }
    return view;
}

#pragma mark Pairs

// That of the ground, which has the focus while pairs are drawn. A fill is handed its context.
NSGraphicsContext* Operators()
{
    static NSGraphicsContext* const operators = [NSGraphicsContext currentContext];
    return operators;
}

CGContextRef Context()
{
    static const CGContextRef context = (CGContextRef)[Operators() graphicsPort];
    return context;
}

void Fill(CComponentCode code, float fRadius, FillDirection direction, CComponentCode background)
{
    [GraphicUtils FillRoundRect:Context()
                          Color:code
                     Background:background
                           Rect:kRect
                         Radius:fRadius
                  FillDirection:direction
                        Flipped:false];
}

void FillPlain(CComponentCode code, FillDirection direction)
{
    [GraphicUtils FillRect:Context()
                     Color:code
                Background:kNone
                      Rect:kRect
             FillDirection:direction
                   Flipped:false];
}

void AddFills(std::vector<Pair>& pairs)
{
    NSGradient* border = Bench::MakeGradient(0.447059, 0.156863);
    const Bench::Fall fall = Bench::FallOf(kRect, false);
    const NSPoint right = {NSMaxX(kRect), NSMinY(kRect)};
    pairs.push_back({"plain fill, flat", 1.05, 400,
                     [] { FillPlain(ccLabelText, kFillTopToBottom); },
                     [] { Bench::DrawFlat(Operators(), kRect, kText); }});
    pairs.push_back(
        {"plain fill, gradient", 1.05, 250, [] { FillPlain(ccButtonBorder, kFillTopToBottom); },
         [=] { Bench::DrawGradient(Operators(), border, kRect, 0, fall.start, fall.end); }});
    pairs.push_back({"plain fill, left to right", 1.05, 250,
                     [] { FillPlain(ccButtonBorder, kFillLeftToRight); },
                     [=]
                     { Bench::DrawGradient(Operators(), border, kRect, 0, kRect.origin, right); }});
    pairs.push_back({"rounded fill, flat", 1.05, 80,
                     [] { Fill(ccLabelText, 6, kFillTopToBottom, kNone); },
                     [] { Bench::DrawRoundFlat(Operators(), kRect, 6, kText); }});
    pairs.push_back(
        {"rounded fill, gradient", 1.05, 80,
         [] { Fill(ccButtonBorder, 6, kFillTopToBottom, kNone); },
         [=] { Bench::DrawGradient(Operators(), border, kRect, 6, fall.start, fall.end); }});
    pairs.push_back({"rounded fill, diagonal on a ground", 1.05, 80,
                     [] { Fill(ccButtonBorder, 6, kFillDiagonal, ccLabelText); },
                     [=]
                     {
                         Bench::DrawFlat(Operators(), kRect, kText);
                         Bench::DrawGradient(Operators(), border, kRect, 6, fall.start, right);
                     }});
}

void AddControls(std::vector<Pair>& pairs)
{
    NSGradient* border = Bench::MakeGradient(0.447059, 0.156863);
    NSGradient* face = Bench::MakeGradient(0.21176470588235294, 0.21176470588235294);
    const auto bezel = [=]
    {
        const NSRect inside = NSInsetRect(kRect, 1, 1);
        const Bench::Fall outer = Bench::FallOf(kRect, false), inner = Bench::FallOf(inside, false);
        Bench::DrawGradient(Operators(), border, kRect, 6, outer.start, outer.end);
        Bench::DrawGradient(Operators(), face, inside, 5, inner.start, inner.end);
    };
    TKButtonCell* button = [[TKButtonCell alloc] init];
    pairs.push_back(
        {"button", 1.10, 40, [=] { [button drawBezelWithFrame:kRect inView:Ground()]; }, bezel});
    TKPopUpButtonCell* popUp = [[TKPopUpButtonCell alloc] init];
    pairs.push_back({"pop-up button, without its title", 1.10, 40,
                     [=] { [popUp drawBezelWithFrame:kRect inView:Ground()]; }, bezel});
    TKToggleSwitch* toggle = [[TKToggleSwitch alloc] initWithFrame:kRect];
    [toggle SetUpColorsFace:ccButtonFace Border:ccButtonBorder];
    const NSRect bounds = [toggle bounds];
    pairs.push_back({"toggle, without its image", 1.10, 40, [=] { [toggle drawRect:NSZeroRect]; },
                     [=]
                     {
                         const NSRect inside = NSInsetRect(bounds, 1, 1);
                         for (const bool fFace : {false, true})
                         {
                             const NSRect rect = fFace ? inside : bounds;
                             Bench::DrawGradient(Operators(), fFace ? face : border, rect, 4,
                                                 NSMakePoint(NSMinX(rect), NSMaxY(rect)),
                                                 NSMakePoint(NSMaxX(rect), NSMinY(rect)));
                         }
                     }});
}

#pragma mark Checking

std::string PixelsOf(NSView* view)
{
    NSBitmapImageRep* image =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    return std::string((const char*)[image bitmapData], [image bytesPerRow] * [image pixelsHigh]);
}

std::string PixelsAfter(const std::function<void()>& draw)
{
    [[NSColor whiteColor] set];
    NSRectFill([Ground() bounds]);
    draw();
    return PixelsOf(Ground());
}

// Not white alone, either.
bool DrawTheSame(const Pair& pair)
{
    const std::string strOurs = PixelsAfter(pair.ours);
    return strOurs == PixelsAfter(pair.direct) && strOurs != PixelsAfter([] {});
}

std::string PixelsOfWhole(NSView* view)
{
    [view display];
    [view lockFocus];
    const std::string strPixels = PixelsOf(view);
    [view unlockFocus];
    return strPixels;
}

#pragma mark Measuring

double Now()
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e9 + double(now.tv_nsec);
}

double NanosecondsOf(const std::function<void()>& draw, int nDraws)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const double dStart = Now();
    for (int n = 0; n < nDraws; ++n)
        draw();
    const double dEnd = Now();
    [pool drain];
    return (dEnd - dStart) / nDraws;
}

double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

// True when the pair keeps its limit. The ratio is the median of those of the rounds, so that a
// round which something else slows down does not count.
bool Measure(const Pair& pair)
{
    std::vector<double> ours, direct, ratios;
    for (int n = 0; n < kRounds; ++n)
    {
        // In turn, so that neither always follows the other.
        const bool fOursFirst = n % 2 == 0;
        if (fOursFirst)
            ours.push_back(NanosecondsOf(pair.ours, pair.nDraws));
        direct.push_back(NanosecondsOf(pair.direct, pair.nDraws));
        if (!fOursFirst)
            ours.push_back(NanosecondsOf(pair.ours, pair.nDraws));
        ratios.push_back(ours.back() / direct.back());
    }
    const double dRatio = Median(ratios);
    std::printf("%-36s %10.0f ns %10.0f ns   %5.3f  (at most %.2f)%s\n", pair.szName, Median(ours),
                Median(direct), dRatio, pair.dMost, dRatio <= pair.dMost ? "" : "  MISSED");
    return dRatio <= pair.dMost;
}

int Run()
{
    AppCreateDefaultColoursDesigner();
    std::vector<Pair> pairs;
    AddFills(pairs);
    AddControls(pairs);

    [Ground() lockFocus];
    for (const Pair& pair : pairs)
        if (!DrawTheSame(pair))
        {
            std::fprintf(stderr, "bench_painting: the two pictures of \"%s\" differ\n",
                         pair.szName);
            return 1;
        }
    std::printf("%-36s %13s %13s   ratio\n", "", "by the palette", "directly");
    bool fKept = true;
    for (const Pair& pair : pairs)
        fKept = Measure(pair) && fKept;
    [Ground() unlockFocus];

    NSView* linkView = MakeLinkView();
    NSView* twin =
        Bench::MakeDirectTwin(linkView, NamedImage(@"LinkInactive17"), NamedImage(@"PopupArrow"));
    OpenWindow(linkView);
    OpenWindow(twin);
    if (PixelsOfWhole(linkView) != PixelsOfWhole(twin))
    {
        std::fprintf(stderr, "bench_painting: the link view and its twin differ\n");
        return 1;
    }
    fKept = Measure({"the whole link view", 1.10, 4, [=] { [linkView display]; },
                     [=] { [twin display]; }}) &&
            fKept;
    return fKept ? 0 : 1;
}

} // namespace

int main(int, char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [NSProcessInfo initializeWithArguments:argv count:1 environment:environ];
    [NSApplication sharedApplication];
    const int nResult = Run();
    [pool drain];
    return nResult;
}
