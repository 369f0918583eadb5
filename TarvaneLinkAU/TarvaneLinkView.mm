#import "TarvaneLinkAU/TarvaneLinkView.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#import "TarvaneLinkAU/TarvaneLinkGestureSlider.h"
#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "colours/ComponentsColors.h"
#import "controls/GraphicUtils.h"
#include "utils/FileIO/FileName.h"

namespace
{
constexpr AudioUnitPropertyID kListenedProperties[] = {
    TNProperty_Elements,
    TNProperty_ArmCapture,
    TNProperty_CurrentSampleInTimeLine,
    kTNProperty_CurrentCaptureLength,
};

constexpr float kParameterListenerInterval = 0.1F; // seconds
constexpr std::int32_t kPositionUpdateDelay = 20;  // one progress notification in 21 is shown
constexpr NSUInteger kShiftKeyFlag = 0x20000;

// Reads a property of the global scope. The value comes back as it went in when the plug-in has
// nothing to say: its status is not looked at.
template <typename T>
void ReadProperty(AudioUnit pUnit, AudioUnitPropertyID nProperty, AudioUnitElement nElement,
                  T& value)
{
    UInt32 nSize = sizeof(T);
    AudioUnitGetProperty(pUnit, nProperty, kAudioUnitScope_Global, nElement, &value, &nSize);
}

template <typename T>
void WriteProperty(AudioUnit pUnit, AudioUnitPropertyID nProperty, const T& value)
{
    AudioUnitSetProperty(pUnit, nProperty, kAudioUnitScope_Global, 0, &value, sizeof(T));
}

// The text of a path field, which a plug-in may have left without a terminator.
std::string PathText(const char (&szPath)[kTNPathSize])
{
    return std::string(szPath, strnlen(szPath, kTNPathSize));
}

// As printf's "%.nf" writes it where the decimal point is one: a host may have set any locale.
std::string FixedText(double dNumber, int nDecimals)
{
    char digits[std::numeric_limits<double>::max_exponent10 + 16];
    const auto result =
        std::to_chars(digits, digits + sizeof digits, dNumber, std::chars_format::fixed, nDecimals);
    return std::string(digits, result.ptr);
}

// What the log tells of a region.
std::string TimesText(const TNRegionTimes& times)
{
    constexpr int kDecimals = 6;
    return FixedText(times.dPosition, kDecimals) + " " + FixedText(times.dAux, kDecimals) + " " +
           FixedText(times.dStart, kDecimals) + " " + FixedText(times.dEnd, kDecimals);
}

// Counts a progress notification, and tells whether it is one to swallow. A function, since a
// message to the view costs a fifth of what a swallowed notification may cost.
bool IsSwallowed(std::atomic<std::int32_t>& nUpdateTimeout)
{
    const std::int32_t nTimeout = nUpdateTimeout.load(std::memory_order_relaxed);
    // It falls for as long as an update waits, which may be for ever.
    if (nTimeout > std::numeric_limits<std::int32_t>::min())
        nUpdateTimeout.store(nTimeout - 1, std::memory_order_relaxed);
    return nTimeout > 0;
}

// Text of the server need not be UTF-8. It is shown all the same, byte by byte: a track without a
// menu item would shift every later one away from its number.
NSString* TextFromServer(const std::string& strText)
{
    NSString* pText = [NSString stringWithUTF8String:strText.c_str()];
    if (pText == nil)
        pText = [NSString stringWithCString:strText.c_str() encoding:NSISOLatin1StringEncoding];
    return pText;
}
} // namespace

void ViewEventListener(void* pUserData, AudioUnit, AudioUnitPropertyID nProperty, AudioUnitScope,
                       AudioUnitElement nElement)
{
    const bool fMustArrive = nProperty == TNProperty_Elements || nProperty == TNProperty_ArmCapture;
    CNotificationGate::CPass pass(pUserData, fMustArrive ? CNotificationGate::Kind::Other
                                                         : CNotificationGate::Kind::Progress);
    if (pass)
        [static_cast<TarvaneLink_CocoaView*>(pUserData) PropertyChanged:nProperty Element:nElement];
}

void ParameterListenerDispatcher(void* pUserData, void* pObject,
                                 const AudioUnitParameter* pParameter,
                                 AudioUnitParameterValue fValue)
{
    [static_cast<TarvaneLink_CocoaView*>(pUserData) parameterListener:pObject
                                                            parameter:pParameter
                                                                value:fValue];
}

@interface TarvaneLink_CocoaView ()
- (void)OpenForNotifications;
- (void)Dispatch:(SEL)selHandler;
- (void)DispatchProgress:(SEL)selHandler;
- (void)ShowProgress:(AudioUnitPropertyID)nProperty;
- (void)TellGesture:(AudioUnitEventType)nType of:(NSNotification*)pNotification;
@end

@implementation TarvaneLink_CocoaView

#pragma mark Life

- (id)initWithFrame:(NSRect)rcFrame
{
    self = [super initWithFrame:rcFrame];
    [self OpenForNotifications];
    return self;
}

- (id)initWithCoder:(NSCoder*)pCoder
{
    self = [super initWithCoder:pCoder];
    [self OpenForNotifications];
    return self;
}

- (void)OpenForNotifications
{
    m_mutexTransportPosition = pthread_mutex_t PTHREAD_MUTEX_INITIALIZER;
    m_nPositionUpdateDelay = kPositionUpdateDelay;
    m_pGate = &CNotificationGate::OpenFor(self);
}

- (void)setAU:(AudioUnit)pUnit
{
    if (mAU != nullptr)
        [self removeListeners];
    mAU = pUnit;
    m_fAudioSuite = false;
    {
        // The mutex is initialised again by a second call, without being destroyed. Nobody may
        // hold it: the listeners are gone, but a late call of one may be under way.
        CNotificationGate::CPause pause(*m_pGate);
        pthread_mutex_init(&m_mutexTransportPosition, nullptr);
        m_fTransportPositionInQueue = false;
        m_nPositionUpdateTimeout.store(0, std::memory_order_relaxed);
        m_nPositionUpdateDelay = kPositionUpdateDelay;
    }

    [self addListeners];
    [self synchronizeUIWithParameterValues];

    [self TNProperty_ArmCapture];
    [self FillTrackMenu];

    [[m_btnTracks menu] setDelegate:self];

    [m_switchCapture SetDelegate:self];
    [m_switchCapture SetStateImages:1 Up:@"LinkActive17" Down:@"LinkActive17"];
    [m_switchCapture SetStateImages:0 Up:@"LinkInactive17" Down:@"LinkInactive17"];
    [m_switchCapture SetUpColorsFace:ccTransportBtnFaceUp Border:ccTransportBtnBorderUp];
    [m_switchCapture SetDownColorsFace:ccTransportBtnFaceDown Border:ccTransportBtnBorderDown];
    [m_switchCapture SetToolTip:@"Capture audio"];
}

// Another thread may be just about to queue a call, and with it a reference to the view, while the
// last owner lets go. Whoever is inside finishes first: after that either the queue owns the view,
// or nobody does and nobody will.
- (oneway void)release
{
    if (m_pGate != nullptr && [self retainCount] == 1)
        m_pGate->CloseBehindTheLast([self] { return [self retainCount] == 1; });
    [super release];
}

- (void)dealloc
{
    [self removeListeners];
    pthread_mutex_destroy(&m_mutexTransportPosition);

    // The controls may outlive the view by a moment, in an event loop of theirs. What others have
    // put in its place stays.
    if ([[m_btnTracks menu] delegate] == self)
        [[m_btnTracks menu] setDelegate:nil];
    if ([m_btnTracks target] == self)
        [m_btnTracks setTarget:nil];
    if ([m_switchCapture Delegate] == self)
        [m_switchCapture SetDelegate:nil];
    if (m_pGate != nullptr)
        m_pGate->Abandon();
    [super dealloc];
}

- (void)addListeners
{
    OSStatus nStatus =
        AUListenerCreate(ParameterListenerDispatcher, self, CFRunLoopGetCurrent(),
                         kCFRunLoopDefaultMode, kParameterListenerInterval, &mParameterListener);
    if (nStatus != 0)
        [[NSAssertionHandler currentHandler]
            handleFailureInMethod:_cmd
                           object:self
                             file:@"TarvaneLinkView"
                       lineNumber:419
                      description:@"[TarvaneLinkAU_CocoaView _addListeners] AUListenerCreate()"];

    NSNotificationCenter* pCentre = [NSNotificationCenter defaultCenter];
    [pCentre addObserver:self
                selector:@selector(handleMouseDown:)
                    name:TarvaneLink_GestureSliderMouseDownNotification
                  object:uiParam1Slider];
    [pCentre addObserver:self
                selector:@selector(handleMouseUp:)
                    name:TarvaneLink_GestureSliderMouseUpNotification
                  object:uiParam1Slider];

    for (AudioUnitPropertyID nProperty : kListenedProperties)
        AudioUnitAddPropertyListener(mAU, nProperty, ViewEventListener, self);
}

- (void)removeListeners
{
    // A view that never had a plug-in has nothing to take back.
    if (mAU == nullptr && mParameterListener == nullptr)
        return;

    OSStatus nStatus = mParameterListener == nullptr ? 0 : AUListenerDispose(mParameterListener);
    if (nStatus != 0)
        [[NSAssertionHandler currentHandler]
            handleFailureInMethod:_cmd
                           object:self
                             file:@"TarvaneLinkView"
                       lineNumber:448
                      description:@"[TarvaneLink_CocoaView _removeListeners] AUListenerDispose()"];
    mParameterListener = nullptr;

    NSNotificationCenter* pCentre = [NSNotificationCenter defaultCenter];
    [pCentre removeObserver:self
                       name:TarvaneLink_GestureSliderMouseDownNotification
                     object:uiParam1Slider];
    [pCentre removeObserver:self
                       name:TarvaneLink_GestureSliderMouseUpNotification
                     object:uiParam1Slider];

    for (AudioUnitPropertyID nProperty : kListenedProperties)
        AudioUnitRemovePropertyListenerWithUserData(mAU, nProperty, ViewEventListener, self);
}

- (void)synchronizeUIWithParameterValues
{
}

- (void)parameterListener:(void*)pObject
                parameter:(const AudioUnitParameter*)pParameter
                    value:(float)fValue
{
    (void)pObject;
    (void)pParameter;
    (void)fValue;
}

#pragma mark Notifications of the plug-in

- (void)PropertyChanged:(std::uint32_t)nProperty Element:(std::uint32_t)nElement
{
    (void)nElement;
    switch (nProperty)
    {
    case TNProperty_Elements:
        [self Dispatch:@selector(TNProperty_Elements)];
        break;
    case TNProperty_ArmCapture:
        [self Dispatch:@selector(TNProperty_ArmCapture)];
        break;
    case TNProperty_CurrentSampleInTimeLine:
        // Kept with its leading underscore: no such handler exists, and the update that is never
        // finished ends the progress display. Plug-ins raise 64010.
        if (!IsSwallowed(m_nPositionUpdateTimeout))
            [self DispatchProgress:@selector(_TNProperty_CurrentSampleInTimeLine)];
        break;
    case kTNProperty_CurrentCaptureLength:
        if (!IsSwallowed(m_nPositionUpdateTimeout))
            [self DispatchProgress:@selector(kTNProperty_CurrentCaptureLength)];
        break;
    default:
        break;
    }
}

- (void)Dispatch:(SEL)selHandler
{
    // A thread of the plug-in's has no pool: what the platform leaves behind goes here.
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    [self performSelectorOnMainThread:selHandler withObject:self waitUntilDone:NO];
    [pPool drain];
}

- (void)DispatchProgress:(SEL)selHandler
{
    pthread_mutex_lock(&m_mutexTransportPosition);
    if (m_fTransportPositionInQueue)
    {
        pthread_mutex_unlock(&m_mutexTransportPosition);
        return;
    }
    m_fTransportPositionInQueue = true;
    pthread_mutex_unlock(&m_mutexTransportPosition);

    [self Dispatch:selHandler];
    m_nPositionUpdateTimeout.store(m_nPositionUpdateDelay, std::memory_order_relaxed);
}

- (void)TNProperty_ArmCapture
{
    [self FillTrackMenu];
    [self UpdateScriptMessages];

    std::uint8_t nArmed = 0;
    ReadProperty(mAU, TNProperty_ArmCapture, 0, nArmed);
    [m_switchCapture setState:nArmed];
}

- (void)kTNProperty_CurrentCaptureLength
{
    [self ShowProgress:kTNProperty_CurrentCaptureLength];
}

- (void)TNProperty_CurrentSampleInTimeLine
{
    [self ShowProgress:TNProperty_CurrentSampleInTimeLine];
}

- (void)ShowProgress:(AudioUnitPropertyID)nProperty
{
    double dSeconds = 0;
    ReadProperty(mAU, nProperty, 0, dSeconds);
    [self UpdateCapture:dSeconds];

    pthread_mutex_lock(&m_mutexTransportPosition);
    m_fTransportPositionInQueue = false;
    pthread_mutex_unlock(&m_mutexTransportPosition);
}

#pragma mark Capture delivery

- (void)TNProperty_Elements
{
    std::int32_t nElement = 0;
    ReadProperty(mAU, TNProperty_NextElement, 0, nElement);
    if (nElement < 0)
        return;

    TNCaptureElement tElement;
    ReadProperty(mAU, TNProperty_ElementInfo, static_cast<AudioUnitElement>(nElement), tElement);
    const TNRegionTimes& tDub = tElement.tDub;
    const std::string strDubPath = PathText(tElement.szDubPath);

    std::fprintf(stderr, "Element: %d\n", nElement);
    std::fprintf(stderr, "\tGuide: %s - %s\n", PathText(tElement.szGuidePath).c_str(),
                 TimesText(tElement.tGuide).c_str());
    std::fprintf(stderr, "\tDub: %s - %s\n", strDubPath.c_str(), TimesText(tDub).c_str());
    std::fprintf(stderr, "\tItentical: %d\n", tElement.fIdentical);

    // The menu is the authority here, not what the plug-in has stored.
    const auto nTrack = static_cast<std::int32_t>([m_btnTracks indexOfSelectedItem]);
    std::uint8_t fNotDelivered = 1;
    if (nTrack >= 0 && tDub.dEnd > tDub.dStart)
    {
        CFileName fileDub(&strDubPath);
        if (!m_Script.CheckDuplicateRegion(m_fAudioSuite, nTrack, &fileDub, tDub.dPosition,
                                           tDub.dStart, tDub.dEnd))
        {
            // The offset is applied here and not for the duplicate check: the two differ on
            // purpose. Product and sum are each rounded (-ffp-contract=off): a fused operation
            // would place a take by a sample elsewhere.
            const double dOffset = m_Script.GetLinkSMPTEOffset(m_fAudioSuite);
            const double dPosition = dOffset * tElement.dSampleRate + tDub.dPosition;
            const int nStatus = m_Script.SendFile(m_fAudioSuite, nTrack, &fileDub, dPosition,
                                                  tDub.dStart, tDub.dEnd, 0);
            if ((nStatus & 0xFFFF) == 0)
            {
                fNotDelivered = 0;
                [m_textError setStringValue:@""];
            }
        }
    }

    TNElementAck tAck;
    tAck.nElement = nElement;
    tAck.fHandled = 1;
    tAck.fNotDelivered = fNotDelivered;
    tAck.fFinal = 1;
    WriteProperty(mAU, TNProperty_ElementDone, tAck);
}

#pragma mark Track menu

- (void)FillTrackMenu
{
    std::vector<std::string> tracks;
    m_Script.ListTracks(m_fAudioSuite, &tracks);

    std::int32_t nSelected = 0;
    ReadProperty(mAU, TNProperty_SelectedTrack, 0, nSelected);
    if (tracks.empty())
        nSelected = -1;
    else
        nSelected = std::min(nSelected, static_cast<std::int32_t>(tracks.size()) - 1);

    [m_btnTracks removeAllItems];
    for (const std::string& strName : tracks)
        [self AddItem:m_btnTracks Name:TextFromServer(strName)];
    if (nSelected >= 0)
        [m_btnTracks selectItemAtIndex:nSelected];
}

- (void)AddItem:(NSPopUpButton*)pButton Name:(NSString*)pName
{
    // Not by the button's own way of adding: it makes one item of two with the same title.
    NSMenuItem* pItem = [[NSMenuItem alloc] initWithTitle:pName action:nullptr keyEquivalent:@""];
    [[pButton menu] addItem:pItem];
    [pItem release];
}

- (IBAction)OnTrack:(id)idSender
{
    (void)idSender;
    const auto nTrack = static_cast<std::int32_t>([m_btnTracks indexOfSelectedItem]);
    WriteProperty(mAU, TNProperty_SelectedTrack, nTrack);
}

- (void)menuWillOpen:(NSMenu*)pMenu
{
    if (pMenu != [m_btnTracks menu])
        return;
    [self FillTrackMenu];
    [self UpdateScriptMessages];
}

#pragma mark Messages

- (void)UpdateCapture:(double)dSeconds
{
    if ([m_switchCapture state] != 1)
        return;
    [m_textError setTextColor:[NSColor colorWithCalibratedRed:0.8 green:0.8 blue:0.8 alpha:1.0]];
    const std::string strSeconds = FixedText(dSeconds, 1);
    [m_textError
        setStringValue:[NSString stringWithFormat:@"Capturing Audio: %s sec", strSeconds.c_str()]];
    [m_textAdvice setStringValue:@""];
}

- (void)UpdateScriptMessages
{
    [m_textError setTextColor:[NSColor colorWithCalibratedRed:0.8 green:0.0 blue:0.0 alpha:1.0]];
    [m_textError setStringValue:TextFromServer(m_Script.m_strLastError)];
    [m_textAdvice setStringValue:TextFromServer(m_Script.m_strAdvice)];
}

#pragma mark TKSwitchDelegate

- (void)TKSwitchChange:(TKToggleSwitch*)pSwitch ModifierFlags:(std::int32_t)nFlags
{
    (void)nFlags;
    if (pSwitch != m_switchCapture)
        return;

    TNArmRequest tRequest = {0, 0};
    if (([[NSApp currentEvent] modifierFlags] & kShiftKeyFlag) != 0)
        tRequest.fShift = 1;

    // The plug-in's state decides, not the one that the switch has just given itself.
    std::uint8_t nArmed = 0;
    ReadProperty(mAU, TNProperty_ArmCapture, 0, nArmed);
    tRequest.fArm = nArmed ^ 1;
    WriteProperty(mAU, TNProperty_SetArmCapture, tRequest);
}

#pragma mark Drawing

- (void)drawRect:(NSRect)rcDirty
{
    // The gradient runs across the whole view, whatever part of it is asked for.
    (void)rcDirty;
    CGContextRef context =
        static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort]);
    [GraphicUtils FillRect:context
                     Color:ccTrackInfoBackground
                Background:CComponentCode(0, 0)
                      Rect:[self bounds]
             FillDirection:kFillLeftToRight
                   Flipped:[self isFlipped]];
}

#pragma mark Gestures

- (void)handleMouseDown:(NSNotification*)pNotification
{
    [self TellGesture:kAudioUnitEvent_BeginParameterChangeGesture of:pNotification];
}

- (void)handleMouseUp:(NSNotification*)pNotification
{
    [self TellGesture:kAudioUnitEvent_EndParameterChangeGesture of:pNotification];
}

- (void)TellGesture:(AudioUnitEventType)nType of:(NSNotification*)pNotification
{
    if ([pNotification object] != uiParam1Slider)
        return;
    AudioUnitEvent event = {};
    event.mEventType = nType;
    // All zero, on purpose: the slider stands for no parameter.
    event.mArgument.mParameter = mParameter;
    AUEventListenerNotify(nullptr, self, &event);
}

@end
