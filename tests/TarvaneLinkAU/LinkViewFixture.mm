#import "tests/TarvaneLinkAU/LinkViewFixture.h"

#include <atomic>
#include <thread>

namespace
{
std::atomic<int> g_nLiveViews{0};
}

ViewHooks& HooksOf(TestLinkView* pView) { return *static_cast<ViewHooks*>(pView->m_pHooks); }

@implementation TestLinkView

- (id)initWithFrame:(NSRect)rcFrame
{
    self = [super initWithFrame:rcFrame];
    if (self == nil)
        return nil;
    ++g_nLiveViews;
    m_pHooks = new ViewHooks;
    m_textError = [[NSTextField alloc] initWithFrame:NSMakeRect(10, 40, 200, 20)];
    m_textAdvice = [[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 200, 20)];
    m_switchCapture = [[TKToggleSwitch alloc] initWithFrame:NSMakeRect(10, 70, 30, 20)];
    m_btnTracks = [[NSPopUpButton alloc] initWithFrame:NSMakeRect(50, 70, 150, 20) pullsDown:NO];
    [m_btnTracks setTarget:self];
    [m_btnTracks setAction:@selector(OnTrack:)];
    uiParam1Slider = [[TarvaneLink_GestureSlider alloc] initWithFrame:NSMakeRect(210, 70, 80, 20)];
    NSView* controls[] = {m_textError, m_textAdvice, m_switchCapture, m_btnTracks, uiParam1Slider};
    for (NSView* pControl : controls)
    {
        [self addSubview:pControl];
        [pControl release];
    }
    return self;
}

- (void)dealloc
{
    --g_nLiveViews;
    const ViewHooks* pHooks = &HooksOf(self);
    [super dealloc];
    delete pHooks;
}

- (NSUInteger)retainCount
{
    ++m_nCountsOfOwners;
    return [super retainCount];
}

- (BOOL)isFlipped
{
    return m_fFlipped;
}

- (void)setAU:(AudioUnit)pUnit
{
    if (HooksOf(self).inSetAU)
        HooksOf(self).inSetAU();
    [super setAU:pUnit];
}

- (void)performSelectorOnMainThread:(SEL)selCall withObject:(id)idObject waitUntilDone:(BOOL)fWaits
{
    if (HooksOf(self).beforeQueueing)
        HooksOf(self).beforeQueueing(
            {Utf8(NSStringFromSelector(selCall)), idObject, fWaits == YES});
    [super performSelectorOnMainThread:selCall withObject:idObject waitUntilDone:fWaits];
}

- (void)UpdateCapture:(double)dSeconds
{
    if (HooksOf(self).inUpdateCapture)
        HooksOf(self).inUpdateCapture();
    [super UpdateCapture:dSeconds];
}

- (NSTextField*)errorLine
{
    return m_textError;
}

- (NSTextField*)adviceLine
{
    return m_textAdvice;
}

- (TKToggleSwitch*)captureSwitch
{
    return m_switchCapture;
}

- (void)setCaptureSwitch:(TKToggleSwitch*)pSwitch
{
    m_switchCapture = pSwitch;
}

- (NSPopUpButton*)trackButton
{
    return m_btnTracks;
}

- (TarvaneLink_GestureSlider*)slider
{
    return uiParam1Slider;
}

- (CTarvaneScript*)script
{
    return &m_Script;
}

- (std::int32_t)throttle
{
    return m_nPositionUpdateTimeout;
}

- (void)setThrottle:(std::int32_t)nTimeout
{
    m_nPositionUpdateTimeout = nTimeout;
}

- (void)setAudioSuite:(bool)fAudioSuite
{
    m_fAudioSuite = fAudioSuite;
}

- (bool)progressInQueue
{
    return m_fTransportPositionInQueue;
}

- (void)lockTransportPosition
{
    pthread_mutex_trylock(&m_mutexTransportPosition);
}

- (bool)transportPositionIsFree
{
    if (pthread_mutex_trylock(&m_mutexTransportPosition) != 0)
        return false;
    pthread_mutex_unlock(&m_mutexTransportPosition);
    return true;
}

+ (int)liveViews
{
    return g_nLiveViews;
}

@end

// Behind everything that waits already; then it has all run.
@interface QueueMarker : NSObject
{
  @public
    int m_nPassed;
}
@end

@implementation QueueMarker

- (void)Pass
{
    ++m_nPassed;
}

- (void)QueueFromHere
{
    [self performSelectorOnMainThread:@selector(Pass) withObject:nil waitUntilDone:NO];
}

@end

void RunQueuedCalls()
{
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    QueueMarker* pMarker = [[QueueMarker alloc] init];
    // Calls of the main thread and those of others wait in queues of their own.
    [pMarker QueueFromHere];
    std::thread([pMarker] { [pMarker QueueFromHere]; }).join();
    while (pMarker->m_nPassed < 2)
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantFuture]];
    [pMarker release];
    [pPool drain];
}

std::string Utf8(NSString* pText) { return pText == nil ? "(nil)" : [pText UTF8String]; }

std::string TrackList(const std::vector<std::string>& names)
{
    std::string strList = std::to_string(names.size() + 1) + "\n1\n";
    for (const std::string& strName : names)
        strList += strName + "\n";
    return strList;
}

LinkViewFixture::LinkViewFixture()
{
    m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 0);
    m_plugIn.SetValue<std::int32_t>(TNProperty_SelectedTrack, 0);
    m_pView = [[TestLinkView alloc] initWithFrame:NSMakeRect(0, 0, 300, 100)];
}

LinkViewFixture::~LinkViewFixture()
{
    // They speak to variables of a test that is over.
    m_plugIn.m_onCall = nullptr;
    m_events.m_whileSending = nullptr;
    [m_pView release];
    RunQueuedCalls();
    EXPECT_EQ(m_plugIn.ListenerCount(), 0u);
}

void LinkViewFixture::Attach()
{
    PlayTracks({"Vox", "Bass"}, 2);
    [m_pView setAU:m_plugIn.Unit()];
    m_plugIn.ForgetRecords();
}

void LinkViewFixture::PlayTracks(std::initializer_list<const char*> names, int nTimes)
{
    const std::string strList = TrackList(std::vector<std::string>(names.begin(), names.end()));
    for (int n = 0; n < nTimes; ++n)
        m_events.Print(strList);
}

std::string LinkViewFixture::ErrorLine() const { return Utf8([[m_pView errorLine] stringValue]); }

std::string LinkViewFixture::AdviceLine() const { return Utf8([[m_pView adviceLine] stringValue]); }

std::vector<std::string> LinkViewFixture::MenuTitles() const
{
    std::vector<std::string> titles;
    for (NSInteger n = 0; n < [[m_pView trackButton] numberOfItems]; ++n)
        titles.push_back(Utf8([[[m_pView trackButton] itemAtIndex:n] title]));
    return titles;
}

int LinkViewFixture::CountOf(const char* szKind, AudioUnitPropertyID nProperty) const
{
    return static_cast<int>(m_plugIn.Of(szKind, nProperty).size());
}
