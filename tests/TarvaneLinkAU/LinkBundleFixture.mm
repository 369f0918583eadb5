#import "tests/TarvaneLinkAU/LinkBundleFixture.h"

#include <AudioUnit/AUCocoaUIView.h>

#include <objc/runtime.h>

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

std::string Utf8(NSString* pText) { return pText == nil ? "(nil)" : [pText UTF8String]; }

NSBundle* LoadedBundle()
{
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:TARVANE_LINK_BUNDLE]];
}

LinkBundle::LinkBundle()
    : m_pPool([[NSAutoreleasePool alloc] init]),
      m_pFactory([[[LoadedBundle() principalClass] alloc] init])
{
    m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 0);
    m_plugIn.SetValue<std::int32_t>(TNProperty_SelectedTrack, 1);
    m_pView = MakeView(NSMakeSize(9, 9));
}

LinkBundle::~LinkBundle()
{
    [m_pFactory release];
    [m_pView release];
    [m_pPool drain];
    EXPECT_EQ(m_plugIn.ListenerCount(), 0u) << "the view is still alive";
}

NSView* LinkBundle::MakeView(NSSize sizePreferred)
{
    PlayTracks(2);
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    NSView* pView = [[m_pFactory uiViewForAudioUnit:m_plugIn.Unit() withSize:sizePreferred] retain];
    [pPool drain];
    return pView;
}

void LinkBundle::PlayTracks(int nTimes)
{
    for (int n = 0; n < nTimes; ++n)
        m_events.Print("4\n1\nDialogue\nFoley\nMusic\n");
}

id LinkBundle::Outlet(const char* szName)
{
    Ivar pVariable = class_getInstanceVariable([m_pView class], szName);
    EXPECT_NE(pVariable, nullptr) << szName;
    return object_getIvar(m_pView, pVariable);
}

std::vector<std::vector<std::uint8_t>> LinkBundle::Written(AudioUnitPropertyID nProperty)
{
    std::vector<std::vector<std::uint8_t>> values;
    for (const auto& record : m_plugIn.Of("Set", nProperty))
        values.push_back(record.m_bytes);
    return values;
}
