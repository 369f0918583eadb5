#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include "TarvaneLinkShared/ScriptTexts.h"

#include <Carbon/Carbon.h>
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cstddef>
#include <memory>

namespace
{
constexpr FourCharCode kServerSignature = 'TkNe';
constexpr AEEventClass kCommandClass = 'TKNE';
constexpr AEEventID kCommandId = 'LCmd';
constexpr AEKeyword kResultKey = 'Rslt';
constexpr AEKeyword kErrorKey = 'Errr';

constexpr std::size_t kShortReplyUnits = 100;
constexpr std::size_t kUnitBytes = sizeof(UniChar);

// What one command makes, disposed of in the order in which it was made.
struct CommandEvent
{
    CommandEvent() = default;
    ~CommandEvent()
    {
        AEDisposeDesc(&m_address);
        AEDisposeDesc(&m_event);
        AEDisposeDesc(&m_reply);
    }
    CommandEvent(const CommandEvent&) = delete;
    CommandEvent& operator=(const CommandEvent&) = delete;

    AEAddressDesc m_address = {typeNull, nullptr};
    AppleEvent m_event = {typeNull, nullptr};
    AppleEvent m_reply = {typeNull, nullptr};
};

// A text parameter of a reply, as it came.
struct ReplyText
{
    std::unique_ptr<UniChar[]> m_pUnits;
    std::size_t m_nCapacity = 0; // units
    std::size_t m_nUnits = 0;
};

OSErr ReadInto(ReplyText* pText, const AppleEvent& reply, AEKeyword nKey, std::size_t nCapacity,
               Size* pnActualBytes)
{
    pText->m_pUnits = std::make_unique<UniChar[]>(nCapacity);
    pText->m_nCapacity = nCapacity;
    DescType nActualType = typeNull;
    return AEGetParamPtr(&reply, nKey, typeUnicodeText, &nActualType, pText->m_pUnits.get(),
                         static_cast<Size>(nCapacity * kUnitBytes), pnActualBytes);
}

// One read for a short text, two for a longer one.
OSErr ReadReplyText(const AppleEvent& reply, AEKeyword nKey, ReplyText* pText)
{
    Size nBytes = 0;
    OSErr status = ReadInto(pText, reply, nKey, kShortReplyUnits, &nBytes);
    if (status == noErr && nBytes > static_cast<Size>(kShortReplyUnits * kUnitBytes))
        // The byte count stands for a count of units; the double room is left as it is.
        status = ReadInto(pText, reply, nKey, static_cast<std::size_t>(nBytes) + 1, &nBytes);
    const std::size_t nUnits = static_cast<std::size_t>(std::max<Size>(nBytes, 0)) / kUnitBytes;
    pText->m_nUnits = std::min(nUnits, pText->m_nCapacity);
    return status;
}

std::unique_ptr<char[]> Utf8FromReplyText(const ReplyText& text)
{
    // Zeroed, and larger than what the conversion may fill: whatever comes of the conversion, the
    // text ends inside the buffer.
    auto pUtf8 = std::make_unique<char[]>(4 * text.m_nCapacity);
    CFStringRef pString = CFStringCreateWithCharacters(kCFAllocatorDefault, text.m_pUnits.get(),
                                                       static_cast<CFIndex>(text.m_nUnits));
    if (pString != nullptr)
    {
        CFStringGetCString(pString, pUtf8.get(), static_cast<CFIndex>(3 * text.m_nCapacity),
                           kCFStringEncodingUTF8);
        CFRelease(pString);
    }
    return pUtf8;
}

// Sends the script and waits. On noErr *pResult is what it printed, and *pServerError the server's
// words if it had any.
OSErr ExchangeCommand(const char* szScript, int nTimeoutTicks, std::unique_ptr<char[]>* pResult,
                      std::string* pServerError)
{
    CommandEvent command;
    OSErr status = AECreateDesc(typeApplSignature, &kServerSignature, sizeof(kServerSignature),
                                &command.m_address);
    if (status != noErr)
        return status;

    status = AECreateAppleEvent(kCommandClass, kCommandId, &command.m_address,
                                kAutoGenerateReturnID, kAnyTransactionID, &command.m_event);
    if (status != noErr)
        return status;

    CFStringRef pScript =
        szScript == nullptr
            ? nullptr
            : CFStringCreateWithCString(kCFAllocatorDefault, szScript, kCFStringEncodingUTF8);
    if (pScript == nullptr)
        return paramErr;
    const SInt32 nUnits = static_cast<SInt32>(CFStringGetLength(pScript));
    const auto pUnits = std::make_unique<UniChar[]>(static_cast<std::size_t>(nUnits) + 1);
    CFStringGetCharacters(pScript, CFRangeMake(0, nUnits), pUnits.get());

    status = AEPutParamPtr(&command.m_event, keyDirectObject, typeUnicodeText, pUnits.get(),
                           static_cast<Size>(nUnits * kUnitBytes));
    CFRelease(pScript);
    if (status != noErr)
        return status;

    status = AECreateDesc(typeNull, nullptr, 0, &command.m_reply);
    if (status != noErr)
        return status;

    status = AESend(&command.m_event, &command.m_reply, kAEWaitReply | kAECanInteract,
                    kAENormalPriority, nTimeoutTicks, nullptr, nullptr);
    if (status != noErr)
        return status;

    ReplyText result;
    status = ReadReplyText(command.m_reply, kResultKey, &result);
    if (status != noErr)
        return status;
    *pResult = Utf8FromReplyText(result);

    ReplyText errorText;
    if (ReadReplyText(command.m_reply, kErrorKey, &errorText) == noErr)
        *pServerError = Utf8FromReplyText(errorText).get();
    return noErr;
}
} // namespace

int CTarvaneScript::SendCommand(const char* szScript, char** ppResult, int nTimeoutTicks)
{
    *ppResult = nullptr;
    if (!m_fUserError)
    {
        m_strLastError.clear();
        m_strAdvice.clear();
    }

    std::unique_ptr<char[]> result;
    std::string serverError;
    const int status = ExchangeCommand(szScript, nTimeoutTicks, &result, &serverError);
    *ppResult = result.release();

    if (!serverError.empty())
    {
        m_strLastError = serverError;
        m_fUserError = false;
    }

    if (status == procNotFound)
    {
        m_strLastError = strTarvaneNotRunning;
        m_strAdvice = strTarvaneNotRunningAdvice;
    }
    else if (status != noErr)
    {
        m_strLastError = "AEError ID:" + std::to_string(status);
    }
    return status;
}
