// What the view makes of a captured element. An input is
//
//   nElement                4 bytes, as 64007 gives it
//   size of the record      1 byte: how much of the record the plug-in writes, in 13ths
//   shape                   1 byte: 1 the dub's path fills its field, 2 the guide's does,
//                           4 the server knows the audio, 8 it fails, 16 fIdentical
//   tDub, dSampleRate       48 and 8 bytes
//   path                    the rest
#include "fuzz/Require.h"
#include "tests/support/ScriptedAppleEvents.h"
#include "tests/support/ScriptedAudioUnit.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#import "TarvaneLinkAU/TarvaneLinkView.h"

#include <algorithm>
#include <cstring>
#include <string_view>

using namespace TarvaneTests;

namespace
{

constexpr std::size_t kPathsAt = 62;

struct Shape
{
    bool fDubFills, fGuideFills, fDuplicate, fServerFails, fIdentical;
};

Shape ShapeOf(std::uint8_t nByte)
{
    return {(nByte & 1) != 0, (nByte & 2) != 0, (nByte & 4) != 0, (nByte & 8) != 0,
            (nByte & 16) != 0};
}

// Over and over again up to the field's last byte, or once with an end.
void WritePath(char (&szField)[kTNPathSize], std::string_view path, bool fFills)
{
    std::size_t nCopied = path.copy(szField, kTNPathSize - 1);
    while (fFills && nCopied > 0 && nCopied < kTNPathSize)
        nCopied += path.copy(szField + nCopied, kTNPathSize - nCopied);
}

TNCaptureElement RecordOf(const std::uint8_t* pBytes, std::size_t nSize, const Shape& shape)
{
    TNCaptureElement tElement;
    std::memcpy(&tElement.tDub, pBytes + 6, sizeof tElement.tDub);
    std::memcpy(&tElement.dSampleRate, pBytes + 54, sizeof tElement.dSampleRate);
    tElement.tGuide = tElement.tDub;
    tElement.fIdentical = shape.fIdentical;
    const std::string_view path(reinterpret_cast<const char*>(pBytes) + kPathsAt, nSize - kPathsAt);
    WritePath(tElement.szDubPath, path, shape.fDubFills);
    WritePath(tElement.szGuidePath, path, shape.fGuideFills);
    return tElement;
}

ScriptedAudioUnit::Bytes BytesOf(const TNCaptureElement& tElement, std::uint8_t nThirteenths)
{
    const auto* pFirst = reinterpret_cast<const std::uint8_t*>(&tElement);
    const std::size_t nWritten = sizeof tElement * std::min<std::size_t>(nThirteenths, 13) / 13;
    return ScriptedAudioUnit::Bytes(pFirst, pFirst + nWritten);
}

bool IsPlain(const char (&szField)[kTNPathSize])
{
    const std::string_view path(szField, strnlen(szField, kTNPathSize));
    return std::all_of(path.begin(), path.end(), [](char c) { return (c & 0x80) == 0; });
}

// Without controls: the menu that is not there has its first track chosen.
TarvaneLink_CocoaView* View()
{
    static TarvaneLink_CocoaView* const pView = []
    {
        ScriptedAppleEvents events;
        TarvaneLink_CocoaView* pNew = [[TarvaneLink_CocoaView alloc] initWithFrame:NSZeroRect];
        [pNew setAU:ScriptedAudioUnit::Unit()];
        return pNew;
    }();
    return pView;
}

void PlayServer(ScriptedAppleEvents& events, const Shape& shape)
{
    for (int n = 0; n < 3; ++n)
    {
        if (shape.fServerFails)
            events.FailSend(errAETimeout);
        else
            events.Print(shape.fDuplicate ? "1\n" : "0\n");
    }
}

// Exactly one for an index that is not negative, and with the outcome that the server gave.
void CheckAcknowledge(const ScriptedAudioUnit& plugIn, std::int32_t nElement, bool fDelivered)
{
    const auto acks = plugIn.Of("Set", TNProperty_ElementDone);
    Require(acks.size() == (nElement < 0 ? 0 : 1));
    if (acks.empty())
        return;
    TNElementAck tAck;
    Require(acks[0].m_bytes.size() == sizeof tAck);
    std::memcpy(&tAck, acks[0].m_bytes.data(), sizeof tAck);
    Require(tAck.nElement == nElement && tAck.fHandled == 1 && tAck.fFinal == 1);
    Require(tAck.fNotDelivered == !fDelivered);
}

void Deliver(const std::uint8_t* pBytes, std::size_t nSize)
{
    std::int32_t nElement = 0;
    std::memcpy(&nElement, pBytes, sizeof nElement);
    const Shape shape = ShapeOf(pBytes[5]);
    const auto bytes = BytesOf(RecordOf(pBytes, nSize, shape), pBytes[4]);
    TNCaptureElement tSeen;
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::uint8_t*>(&tSeen));

    ScriptedAudioUnit plugIn;
    TarvaneLink_CocoaView* pView = View();
    plugIn.ForgetRecords();
    plugIn.SetValue(TNProperty_NextElement, nElement);
    plugIn.SetBytes(TNProperty_ElementInfo, static_cast<AudioUnitElement>(nElement), bytes);
    ScriptedAppleEvents events;
    PlayServer(events, shape);
    [pView TNProperty_Elements];

    const bool fRegion = nElement >= 0 && tSeen.tDub.dEnd > tSeen.tDub.dStart;
    const bool fKnown = shape.fDuplicate && !shape.fServerFails;
    const std::size_t nCommands = events.Commands().size();
    Require((nCommands != 0) == fRegion);
    // Scripts whose path is no text are not sent: the offset's alone is.
    Require(!fRegion || nCommands == 1 || (nCommands == 3 && !fKnown));
    Require(!fRegion || !IsPlain(tSeen.szDubPath) || nCommands == (fKnown ? 1u : 3u));
    CheckAcknowledge(plugIn, nElement, nCommands == 3 && !shape.fServerFails);
    Require(events.LiveDescriptors() == 0);
}

} // namespace

// The view's diagnostic lines go nowhere; the fuzzer's own and the sanitizers' stay.
extern "C" int LLVMFuzzerInitialize(int* pnArguments, char*** pppArguments)
{
    static char szQuiet[] = "-close_fd_mask=2";
    static std::vector<char*> arguments(*pppArguments, *pppArguments + *pnArguments);
    arguments.insert(arguments.begin() + 1, szQuiet);
    *pnArguments = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    *pppArguments = arguments.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    if (nSize < kPathsAt)
        return 0;
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    Deliver(pBytes, nSize);
    [pPool drain];
    return 0;
}
