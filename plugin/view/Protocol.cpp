#include "plugin/view/Protocol.h"

#include <algorithm>
#include <cstring>

namespace Tarvane
{
namespace
{

struct Rule
{
    FrameKind kind;
    bool fFromView;
    bool fFromPlugIn;
    std::size_t nMaxData;
};

constexpr Rule kRules[] = {
    {FrameKind::Hello, true, true, 0},
    {FrameKind::Get, true, false, 0},
    {FrameKind::Info, true, false, 0},
    {FrameKind::Set, true, false, kMaxFrameData},
    {FrameKind::Ready, true, false, 0},
    {FrameKind::Failed, true, false, kMaxFrameData},
    {FrameKind::Outcome, true, false, kMaxFrameData},
    {FrameKind::ServerAppeared, true, false, 0},
    {FrameKind::Reply, false, true, kMaxFrameData},
    {FrameKind::Notify, false, true, 0},
    {FrameKind::Embed, false, true, 0},
    {FrameKind::Detach, false, true, 0},
};

const Rule* RuleOf(FrameKind kind)
{
    const auto* pRule = std::find_if(std::begin(kRules), std::end(kRules),
                                     [kind](const Rule& rule) { return rule.kind == kind; });
    return pRule == std::end(kRules) ? nullptr : pRule;
}

} // namespace

std::vector<std::uint8_t> EncodeFrame(const CFrame& frame)
{
    const std::uint32_t header[] = {
        static_cast<std::uint32_t>(frame.kind),    frame.nId,   frame.nElement,
        static_cast<std::uint32_t>(frame.nStatus), frame.nSize, frame.nSerial};
    static_assert(sizeof header == kFrameHeaderSize);
    std::vector<std::uint8_t> packet(sizeof header + frame.data.size());
    std::memcpy(packet.data(), header, sizeof header);
    std::copy(frame.data.begin(), frame.data.end(), packet.begin() + sizeof header);
    return packet;
}

std::optional<CFrame> DecodeFrame(const std::uint8_t* pBytes, std::size_t nSize, FrameSender sender)
{
    if (nSize < kFrameHeaderSize || nSize > kMaxFrameSize)
        return std::nullopt;
    std::uint32_t header[6];
    std::memcpy(header, pBytes, sizeof header);
    const auto kind = static_cast<FrameKind>(header[0]);
    const Rule* pRule = RuleOf(kind);
    if (pRule == nullptr || nSize - kFrameHeaderSize > pRule->nMaxData)
        return std::nullopt;
    if (!(sender == FrameSender::View ? pRule->fFromView : pRule->fFromPlugIn))
        return std::nullopt;
    return CFrame{kind,
                  header[1],
                  header[2],
                  static_cast<std::int32_t>(header[3]),
                  header[4],
                  header[5],
                  {pBytes + kFrameHeaderSize, pBytes + nSize}};
}

} // namespace Tarvane
