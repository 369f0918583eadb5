#pragma once

#include <cstddef>
#include <cstdint>

/// What the view and the signal side of the plug-in say to each other: custom properties of the
/// audio unit, in the global scope, in native byte order (both live in one process).
///
/// The signal side publishes; the view reads when it is notified, and answers:
///
///   64000  raised when a capture is ready. The view then reads 64007 and 64002, delivers the
///          capture and writes 64008: exactly one acknowledge for each index that is not negative.
///   64004  raised after every change of the armed state, and after an acknowledge was taken in.
///          The view then refreshes its toggle, its track menu and its two message lines.
///   64010  raised as often as wanted while a capture runs; the view thins it out.
///
/// Notifications may be raised on any thread.
enum : std::uint32_t
{
    /// Listened. Carries no value: a captured element is ready.
    TNProperty_Elements = 64000,
    /// Read by the view, at the element index that 64007 gave: TNCaptureElement.
    TNProperty_ElementInfo = 64002,
    /// Read by the view and listened: one byte, 1 armed, 0 not.
    TNProperty_ArmCapture = 64004,
    /// Written by the view: TNArmRequest.
    TNProperty_SetArmCapture = 64005,
    /// Listened: 64-bit float, the same quantity as 64010. A signal side must not raise it: the
    /// first one that passes the throttle ends the progress display.
    TNProperty_CurrentSampleInTimeLine = 64006,
    /// Read by the view: signed 32-bit index of the element to deliver, negative for none.
    TNProperty_NextElement = 64007,
    /// Written by the view: TNElementAck. The files of the element must stay until then.
    TNProperty_ElementDone = 64008,
    /// Read and written by the view: signed 32-bit place of the chosen track in the server's list,
    /// from 0. The signal side only keeps it.
    TNProperty_SelectedTrack = 64009,
    /// Read by the view and listened: 64-bit float, length of the running capture in seconds.
    kTNProperty_CurrentCaptureLength = 64010,
};

/// The value of 64005.
struct TNArmRequest
{
    std::uint8_t fArm;   ///< the armed state asked for
    std::uint8_t fShift; ///< 1 if Shift was held when the toggle was used
};

/// The value of 64008.
struct TNElementAck
{
    std::int32_t nElement;      ///< the index that 64007 gave
    std::uint8_t fHandled;      ///< always 1
    std::uint8_t fNotDelivered; ///< 0 when the capture was placed on the server's track
    std::uint8_t fFinal;        ///< always 1
                                ///< the last byte is padding: never written, not to be read
};

/// Where a region lies: in its file, and the file on the host's timeline. All in samples.
struct TNRegionTimes
{
    double dPosition = 0; ///< of the file's first sample on the timeline
    double dAux = 0;      ///< logged only
    double dReservedA = 0;
    double dStart = 0; ///< in the file
    double dEnd = 0;   ///< in the file; the region is empty unless it is greater than dStart
    double dReservedB = 0;
};

constexpr std::size_t kTNPathSize = 1024;

/// The value of 64002. Plain field order with natural alignment; the two sides must be built with
/// the same rule for the alignment of doubles.
struct TNCaptureElement
{
    std::int32_t nHeader = 0;
    char szGuidePath[kTNPathSize] = {}; ///< UTF-8; logged only
    TNRegionTimes tGuide;               ///< logged only
    char szDubPath[kTNPathSize] = {};   ///< UTF-8, full path of the file that goes to the server
    TNRegionTimes tDub;
    std::uint8_t reserved[1028] = {};
    TNRegionTimes tThird;
    std::uint8_t fIdentical = 0; ///< logged only; the server decides what is a duplicate
    double dSampleRate = 0;      ///< samples per second
};

namespace TNLayout
{
struct DoubleAfterByte
{
    char nByte;
    double dValue;
};

/// Some platforms align doubles to 4 bytes; the padding in front of them then falls away.
constexpr bool kDoublesOn4 = offsetof(DoubleAfterByte, dValue) == 4;

constexpr std::size_t Pick(std::size_t nDoublesOn8, std::size_t nDoublesOn4)
{
    return kDoublesOn4 ? nDoublesOn4 : nDoublesOn8;
}
} // namespace TNLayout

static_assert(sizeof(TNArmRequest) == 2);
static_assert(offsetof(TNArmRequest, fArm) == 0);
static_assert(offsetof(TNArmRequest, fShift) == 1);

static_assert(sizeof(TNElementAck) == 8);
static_assert(offsetof(TNElementAck, nElement) == 0);
static_assert(offsetof(TNElementAck, fHandled) == 4);
static_assert(offsetof(TNElementAck, fNotDelivered) == 5);
static_assert(offsetof(TNElementAck, fFinal) == 6);

static_assert(sizeof(TNRegionTimes) == 48);
static_assert(offsetof(TNRegionTimes, dPosition) == 0);
static_assert(offsetof(TNRegionTimes, dAux) == 8);
static_assert(offsetof(TNRegionTimes, dReservedA) == 16);
static_assert(offsetof(TNRegionTimes, dStart) == 24);
static_assert(offsetof(TNRegionTimes, dEnd) == 32);
static_assert(offsetof(TNRegionTimes, dReservedB) == 40);

static_assert(sizeof(TNCaptureElement) == TNLayout::Pick(3248, 3236));
static_assert(offsetof(TNCaptureElement, nHeader) == 0);
static_assert(offsetof(TNCaptureElement, szGuidePath) == 4);
static_assert(offsetof(TNCaptureElement, tGuide) == TNLayout::Pick(1032, 1028));
static_assert(offsetof(TNCaptureElement, szDubPath) == TNLayout::Pick(1080, 1076));
static_assert(offsetof(TNCaptureElement, tDub) == TNLayout::Pick(2104, 2100));
static_assert(offsetof(TNCaptureElement, reserved) == TNLayout::Pick(2152, 2148));
static_assert(offsetof(TNCaptureElement, tThird) == TNLayout::Pick(3184, 3176));
static_assert(offsetof(TNCaptureElement, fIdentical) == TNLayout::Pick(3232, 3224));
static_assert(offsetof(TNCaptureElement, dSampleRate) == TNLayout::Pick(3240, 3228));
