// What the plug-in and the process of its view say to each other: one packet a frame, over a pair
// of SOCK_SEQPACKET sockets, in the byte order of the machine that both run on.
//
//    0  kind      which of the below
//    4  id        a property; or as the kind says
//    8  element
//   12  status    signed
//   16  size      bytes: how many are asked for, or how large a property is
//   20  serial    of a question, and of its reply
//   24  data      to the packet's end
//
// Each side's first frame is a Hello. Get, Info, Set, Reply and Notify carry the contract of
// TarvaneLinkAU/TarvaneLinkProperties.h in the global scope, unchanged. A frame that breaks a rule
// below, comes from the wrong side, or is out of turn, ends the connection and nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Tarvane
{

constexpr std::uint32_t kViewProtocolVersion = 1;
constexpr std::size_t kFrameHeaderSize = 24;
/// More than the largest property, and than the longest words that are passed on.
constexpr std::size_t kMaxFrameData = 4096;
constexpr std::size_t kMaxFrameSize = kFrameHeaderSize + kMaxFrameData;

enum class FrameKind : std::uint32_t
{
    /// Both ways; id: the sender's kViewProtocolVersion. Sides of two versions do not talk.
    Hello = 1,

    /// From the view. Each of the first three is answered by one Reply with the same serial.
    Get,    ///< id, element; size: how many bytes the caller has room for
    Info,   ///< id, element
    Set,    ///< id, element, data
    Ready,  ///< the view listens: takes that wait may be announced
    Failed, ///< there will be no view; data: why, in UTF-8. The process then ends.
            ///< element: a take's index; id: what became of it, a TakeOutcome; data: the position
            ///< on the server's timeline, a 64-bit float, and then the server's words in UTF-8
    Outcome,
    ServerAppeared, ///< the server's name has got an owner

    /// From the plug-in.
    Reply,  ///< status; size and data: of the property; to Info, id: 1 if it can be written
    Notify, ///< id: the property that was raised
    Embed,  ///< id: the window of the display that is to hold the view
    Detach, ///< id: the window that is to hold it no longer
};

struct CFrame
{
    FrameKind kind = FrameKind::Hello;
    std::uint32_t nId = 0;
    std::uint32_t nElement = 0;
    std::int32_t nStatus = 0;
    std::uint32_t nSize = 0;
    std::uint32_t nSerial = 0;
    std::vector<std::uint8_t> data = {}; ///< at most kMaxFrameData bytes

    bool operator==(const CFrame&) const = default;
};

enum class FrameSender
{
    View,
    PlugIn,
};

/// The packet of a frame whose data is within its bound.
std::vector<std::uint8_t> EncodeFrame(const CFrame& frame);

/// The frame of a packet; empty when it is none that this sender may send. Looks at no byte outside
/// the packet, whatever is in it.
std::optional<CFrame> DecodeFrame(const std::uint8_t* pBytes, std::size_t nSize,
                                  FrameSender sender);

} // namespace Tarvane
