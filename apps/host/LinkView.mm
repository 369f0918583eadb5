#import "apps/host/LinkView.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/program/CommandLine.h"
#import "apps/support/window/Application.h"
#import "apps/support/window/ViewFactory.h"

#import <AudioUnit/AUCocoaUIView.h>

#include <objc/runtime.h>

namespace Tarvane
{
namespace
{

std::string FromNSString(NSString* strText)
{
    const char* szText = [strText UTF8String];
    return szText != nullptr ? szText : "";
}

NSString* const kTitle = @"Tarvane Link";

NSWindow* MakeWindow(NSView* view)
{
    const NSRect frame = {{120, 320}, [view frame].size};
    NSWindow* window = [[NSWindow alloc]
        initWithContentRect:frame
                  styleMask:NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask
                    backing:NSBackingStoreBuffered
                      defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setTitle:kTitle];
    // So that the window manager offers no other size.
    [window setContentMinSize:frame.size];
    [window setContentMaxSize:frame.size];
    [window setContentView:view];
    [window makeKeyAndOrderFront:nil];
    return window;
}

NSEvent* MouseEvent(NSEventType type, NSView* view)
{
    const NSRect bounds = [view bounds];
    const NSPoint centre = {NSMidX(bounds), NSMidY(bounds)};
    return [NSEvent mouseEventWithType:type
                              location:[view convertPoint:centre toView:nil]
                         modifierFlags:0
                             timestamp:0
                          windowNumber:[[view window] windowNumber]
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:0];
}

} // namespace

CLinkView::CLinkView(const std::filesystem::path& bundle, AudioUnit pUnit)
{
    const NSSize size = {0, 0};
    m_view = [[MakeViewFactory(bundle) uiViewForAudioUnit:pUnit withSize:size] retain];
    if (m_view == nil)
    {
        throw CUsageError("the bundle " + bundle.string() +
                          " made no view - see above for its reason, or name another with "
                          "--bundle.");
    }
    m_window = MakeWindow(m_view);
}

CLinkView::~CLinkView()
{
    [m_window setDelegate:nil];
    [m_window orderOut:nil];
    [m_view removeFromSuperview];
    [m_window close];
    [m_window release];
    [m_view release];
}

// The view's parts go by the names that its nib connects; a view that has none is no error.
id CLinkView::Part(NSString* strName) const
{
    const bool fHas = class_getInstanceVariable([m_view class], [strName UTF8String]) != nullptr;
    return fHas ? [m_view valueForKey:strName] : nil;
}

std::string CLinkView::Text(NSString* strName) const
{
    return FromNSString([Part(strName) stringValue]);
}

NSPopUpButton* CLinkView::Menu() const { return Part(@"m_btnTracks"); }

ViewWords CLinkView::Words() const
{
    return {Text(@"m_textError"), Text(@"m_textAdvice"),
            FromNSString([Menu() titleOfSelectedItem])};
}

std::vector<std::string> CLinkView::Tracks() const
{
    std::vector<std::string> names;
    for (NSInteger n = 0; n < [Menu() numberOfItems]; ++n)
    {
        names.push_back(FromNSString([Menu() itemTitleAtIndex:n]));
    }
    return names;
}

int CLinkView::SelectedTrack() const
{
    return Menu() == nil ? -1 : static_cast<int>([Menu() indexOfSelectedItem]);
}

bool CLinkView::PressToggle()
{
    NSView* toggle = Part(@"m_switchCapture");
    if (toggle == nil)
    {
        return false;
    }
    [toggle mouseDown:MouseEvent(NSLeftMouseDown, toggle)];
    [toggle mouseUp:MouseEvent(NSLeftMouseUp, toggle)];
    return true;
}

void CLinkView::Arm(AudioUnit pUnit)
{
    if (!PressToggle())
    {
        const TNArmRequest request{1, 0};
        AudioUnitSetProperty(pUnit, TNProperty_SetArmCapture, kAudioUnitScope_Global, 0, &request,
                             sizeof request);
    }
}

bool CLinkView::ChooseTrack(int nTrack)
{
    NSPopUpButton* menu = Menu();
    if (nTrack < 0 || nTrack >= [menu numberOfItems])
    {
        return false;
    }
    [menu selectItemAtIndex:nTrack];
    [menu sendAction:[menu action] to:[menu target]];
    return true;
}

bool CLinkView::OpenMenu()
{
    NSPopUpButton* menu = Menu();
    NSPopUpButtonCell* cell = [menu cell];
    [cell attachPopUpWithFrame:[menu bounds] inView:menu];
    [cell dismissPopUp];
    return menu != nil;
}

void CLinkView::ShowWord(const std::string& strWord)
{
    NSString* title =
        strWord.empty()
            ? kTitle
            : [NSString stringWithFormat:@"%@ - %@", kTitle,
                                         [NSString stringWithUTF8String:strWord.c_str()]];
    [m_window setTitle:title];
}

std::string CLinkView::Picture()
{
    [m_window orderFront:nil];
    return TakePicture(m_view);
}

} // namespace Tarvane
