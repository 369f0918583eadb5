// What painting costs by the palette, beside the same picture drawn by the platform's operators
// alone. Each pair runs in turn in one process: compare within a pair only.
#include "colours/ComponentsColors.h"
#import "controls/GraphicUtils.h"
#import "controls/TKButtonCell.h"
#import "controls/TKToggleSwitch.h"

#import <AppKit/AppKit.h>
#import <AppKit/DPSOperators.h>

#include <benchmark/benchmark.h>

#include <unistd.h>

namespace
{

const NSRect kRect = NSMakeRect(10, 10, 120, 24);
constexpr CComponentCode kNone(0, 0);

// A view of a window on the screen, with the focus.
NSView* View()
{
    static NSView* view;
    if (view == nil)
    {
        static char name[] = "bench_painting";
        static char* arguments[] = {name, nullptr};
        [NSProcessInfo initializeWithArguments:arguments count:1 environment:environ];
        [NSApplication sharedApplication];
        AppCreateDefaultColoursDesigner();
        NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 100)
                                                       styleMask:NSBorderlessWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
        [window orderFront:nil];
        [window display];
        view = [window contentView];
        [view lockFocus];
    }
    return view;
}

NSGraphicsContext* Operators()
{
    View();
    return [NSGraphicsContext currentContext];
}

NSColor* Grey(CGFloat dLevel)
{
    return [NSColor colorWithDeviceRed:dLevel green:dLevel blue:dLevel alpha:1];
}

NSGradient* Gradient(CGFloat dFrom, CGFloat dTo)
{
    const CGFloat locations[] = {0, 1};
    return [[NSGradient alloc] initWithColors:[NSArray arrayWithObjects:Grey(dFrom), Grey(dTo), nil]
                                  atLocations:locations
                                   colorSpace:[NSColorSpace deviceRGBColorSpace]];
}

NSGradient* Border()
{
    static NSGradient* const gradient = Gradient(0.447059, 0.156863);
    return gradient;
}

NSGradient* Face()
{
    static NSGradient* const gradient = Gradient(0.21176470588235294, 0.21176470588235294);
    return gradient;
}

void DirectGradient(NSGraphicsContext* operators, NSGradient* gradient, NSPoint start, NSPoint end)
{
    [operators drawGradient:gradient fromPoint:start toPoint:end options:3];
}

void DirectFlat(NSGraphicsContext* operators)
{
    DPSsetrgbcolor(operators, 0.698, 0.698, 0.698);
    DPSsetalpha(operators, 1);
    DPSrectfill(operators, NSMinX(kRect), NSMinY(kRect), NSWidth(kRect), NSHeight(kRect));
}

void DirectRoundClip(NSGraphicsContext* operators, NSRect rect, CGFloat r)
{
    const CGFloat x0 = NSMinX(rect), y0 = NSMinY(rect), x1 = NSMaxX(rect), y1 = NSMaxY(rect);
    DPSnewpath(operators);
    DPSmoveto(operators, x0 + r, y0);
    DPSarct(operators, x0, y0, x0, y0 + r, r);
    DPSlineto(operators, x0, y1 - r);
    DPSarct(operators, x0, y1, x0 + r, y1, r);
    DPSlineto(operators, x1 - r, y1);
    DPSarct(operators, x1, y1, x1, y1 - r, r);
    DPSlineto(operators, x1, y0 + r);
    DPSarct(operators, x1, y0, x1 - r, y0, r);
    DPSlineto(operators, x0 + r, y0);
    DPSclosepath(operators);
    DPSclip(operators);
    DPSnewpath(operators);
}

void DirectRound(NSGraphicsContext* operators, NSGradient* gradient, NSRect rect, CGFloat r)
{
    DPSgsave(operators);
    DirectRoundClip(operators, rect, r);
    DirectGradient(operators, gradient, NSMakePoint(NSMinX(rect), NSMaxY(rect)),
                   NSMakePoint(NSMinX(rect), NSMinY(rect)));
    DPSgrestore(operators);
}

template <class Draw> void Run(benchmark::State& state, Draw draw)
{
    NSGraphicsContext* operators = Operators();
    for (auto _ : state)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        draw(operators);
        [pool drain];
    }
}

void Fill(NSGraphicsContext* operators, CComponentCode code, float fRadius)
{
    [GraphicUtils FillRoundRect:(CGContextRef)[operators graphicsPort]
                          Color:code
                     Background:kNone
                           Rect:kRect
                         Radius:fRadius
                  FillDirection:kFillTopToBottom
                        Flipped:false];
}

void FlatFill(benchmark::State& state)
{
    Run(state, [](NSGraphicsContext* operators) { Fill(operators, ccLabelText, 0); });
}

void FlatDirect(benchmark::State& state) { Run(state, &DirectFlat); }

void GradientFill(benchmark::State& state)
{
    Run(state, [](NSGraphicsContext* operators) { Fill(operators, ccButtonBorder, 0); });
}

void GradientDirect(benchmark::State& state)
{
    Run(state,
        [](NSGraphicsContext* operators)
        {
            DPSgsave(operators);
            DPSnewpath(operators);
            DPSmoveto(operators, NSMinX(kRect), NSMinY(kRect));
            DPSlineto(operators, NSMaxX(kRect), NSMinY(kRect));
            DPSlineto(operators, NSMaxX(kRect), NSMaxY(kRect));
            DPSlineto(operators, NSMinX(kRect), NSMaxY(kRect));
            DPSclosepath(operators);
            DPSclip(operators);
            DPSnewpath(operators);
            DirectGradient(operators, Border(), NSMakePoint(NSMinX(kRect), NSMaxY(kRect)),
                           NSMakePoint(NSMinX(kRect), NSMinY(kRect)));
            DPSgrestore(operators);
        });
}

void RoundFlatFill(benchmark::State& state)
{
    Run(state, [](NSGraphicsContext* operators) { Fill(operators, ccLabelText, 6); });
}

void RoundFlatDirect(benchmark::State& state)
{
    Run(state,
        [](NSGraphicsContext* operators)
        {
            DPSgsave(operators);
            DirectRoundClip(operators, kRect, 6);
            DirectFlat(operators);
            DPSgrestore(operators);
        });
}

void RoundGradientFill(benchmark::State& state)
{
    Run(state, [](NSGraphicsContext* operators) { Fill(operators, ccButtonBorder, 6); });
}

void RoundGradientDirect(benchmark::State& state)
{
    Run(state, [](NSGraphicsContext* operators) { DirectRound(operators, Border(), kRect, 6); });
}

void ButtonBezel(benchmark::State& state)
{
    TKButtonCell* cell = [[TKButtonCell alloc] init];
    Run(state, [cell](NSGraphicsContext*) { [cell drawBezelWithFrame:kRect inView:View()]; });
    [cell release];
}

void ButtonBezelDirect(benchmark::State& state)
{
    Run(state,
        [](NSGraphicsContext* operators)
        {
            DirectRound(operators, Border(), kRect, 6);
            DirectRound(operators, Face(), NSInsetRect(kRect, 1, 1), 5);
        });
}

void Toggle(benchmark::State& state)
{
    TKToggleSwitch* toggle = [[TKToggleSwitch alloc] initWithFrame:kRect];
    [toggle SetUpColorsFace:ccTransportBtnFaceUp Border:ccButtonBorder];
    Run(state, [toggle](NSGraphicsContext*) { [toggle drawRect:NSZeroRect]; });
    [toggle release];
}

void ToggleDirect(benchmark::State& state)
{
    const NSRect bounds = NSMakeRect(0, 0, NSWidth(kRect), NSHeight(kRect));
    const auto draw = [](NSGraphicsContext* operators, NSGradient* gradient, NSRect rect)
    {
        DPSgsave(operators);
        DirectRoundClip(operators, rect, 4);
        DirectGradient(operators, gradient, NSMakePoint(NSMinX(rect), NSMaxY(rect)),
                       NSMakePoint(NSMaxX(rect), NSMinY(rect)));
        DPSgrestore(operators);
    };
    Run(state,
        [&](NSGraphicsContext* operators)
        {
            draw(operators, Border(), bounds);
            draw(operators, Face(), NSInsetRect(bounds, 1, 1));
        });
}

} // namespace

BENCHMARK(FlatFill);
BENCHMARK(FlatDirect);
BENCHMARK(GradientFill);
BENCHMARK(GradientDirect);
BENCHMARK(RoundFlatFill);
BENCHMARK(RoundFlatDirect);
BENCHMARK(RoundGradientFill);
BENCHMARK(RoundGradientDirect);
BENCHMARK(ButtonBezel);
BENCHMARK(ButtonBezelDirect);
BENCHMARK(Toggle);
BENCHMARK(ToggleDirect);

int main(int argc, char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    [pool drain];
    return 0;
}
