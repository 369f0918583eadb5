#include "apps/conform/server/ServerPeer.h"

#include "apps/conform/server/ServerProcess.h"
#include "apps/support/event/EventDescriptor.h"
#include "apps/support/text/DecimalNumber.h"
#include "utils/UnicodeText.h"

#include <Carbon/Carbon.h>

#include <cstdlib>
#include <optional>

namespace Tarvane::Conform
{
namespace
{

constexpr std::size_t kLongestItem = 999;
constexpr char szNoDocument[] = "NO-DOCUMENT";

std::optional<ReplyText> TextOf(const AppleEvent& reply, AEKeyword nKey)
{
    ReplyText text;
    Size nBytes = 0;
    if (AESizeOfParam(&reply, nKey, &text.nType, &nBytes) != noErr)
        return std::nullopt;
    text.nBytes = static_cast<std::size_t>(nBytes);
    std::u16string units((text.nBytes + 1) / sizeof(char16_t), u'\0');
    AEGetParamPtr(&reply, nKey, typeWildCard, nullptr, units.data(), nBytes, nullptr);
    text.strText = Utf8FromUtf16(units);
    return text;
}

std::optional<std::string> ReadIn(const std::optional<ReplyText>& text)
{
    return text ? std::optional(text->strText) : std::nullopt;
}

OSErr SendEvent(const std::string& strScript, SInt32 nTimeoutTicks, AppleEvent* pReply)
{
    const OSType nSignature = 'TkNe';
    const std::u16string units = Utf16FromUtf8(strScript);
    CEventDescriptor target;
    CEventDescriptor event;
    OSErr nStatus = AECreateDesc(typeApplSignature, &nSignature, sizeof nSignature, &target);
    if (nStatus == noErr)
        nStatus = AECreateAppleEvent('TKNE', 'LCmd', &target, kAutoGenerateReturnID,
                                     kAnyTransactionID, &event);
    if (nStatus == noErr)
        nStatus = AEPutParamPtr(&event, keyDirectObject, typeUnicodeText, units.data(),
                                static_cast<Size>(units.size() * sizeof(char16_t)));
    if (nStatus == noErr)
        nStatus = static_cast<OSErr>(AESend(&event, pReply, kAEWaitReply | kAECanInteract,
                                            kAENormalPriority, nTimeoutTicks, nullptr, nullptr));
    return nStatus;
}

void MustHaveCome(const Reply& reply)
{
    switch (reply.nStatus)
    {
    case noErr:
        return;
    case procNotFound:
        throw CBroken("there is no server any more");
    case errAETimeout:
        throw CBroken("no reply came in time");
    case connectionInvalid:
        throw CBroken("the server ended during the command");
    default:
        throw CBroken("the command ended with status " + std::to_string(reply.nStatus));
    }
}

const std::string& Readable(const std::optional<ReplyText>& text, const char* szKey)
{
    if (!text)
        throw CBroken(std::string("the reply has no ") + szKey);
    if (text->nType != typeUnicodeText)
        throw CBroken(std::string(szKey) + " is not of type 'utxt'");
    if (text->nBytes % sizeof(char16_t) != 0)
        throw CBroken(std::string(szKey) + " ends in half a character");
    return text->strText;
}

} // namespace

Reply CServerPeer::Send(const std::string& strScript) const
{
    CEventDescriptor descriptor;
    Reply reply;
    reply.nStatus = SendEvent(strScript, m_nTimeoutTicks, &descriptor);
    if (reply.nStatus == noErr)
    {
        reply.result = TextOf(descriptor, 'Rslt');
        reply.error = TextOf(descriptor, 'Errr');
    }
    m_last = {strScript, reply.nStatus, ReadIn(reply.result), ReadIn(reply.error), CarriersError()};
    return reply;
}

std::string CServerPeer::Printed(const std::string& strScript) const
{
    const Reply reply = Send(strScript);
    MustHaveCome(reply);
    return Readable(reply.result, "'Rslt'");
}

std::string CServerPeer::PrintedWithoutError(const std::string& strScript) const
{
    const Reply reply = Send(strScript);
    MustHaveCome(reply);
    if (reply.error && !reply.error->strText.empty())
        throw CBroken("the script failed: " + QuotedText(reply.error->strText));
    return Readable(reply.result, "'Rslt'");
}

std::string CServerPeer::Error(const std::string& strScript) const
{
    const Reply reply = Send(strScript);
    MustHaveCome(reply);
    return reply.error ? Readable(reply.error, "'Errr'") : std::string();
}

std::string CServerPeer::Selected(const std::string& strBody) const
{
    return "if SelectScriptDocument() then\n" + strBody + "\nelse\nprint('" + szNoDocument +
           "')\nend\n";
}

std::string CServerPeer::Line(const std::string& strBody) const
{
    std::string strPrinted = PrintedWithoutError(Selected(strBody));
    const std::size_t nEnd = strPrinted.find_first_of("\r\n");
    if (nEnd == std::string::npos ||
        strPrinted.find_first_not_of("\r\n", nEnd) != std::string::npos)
        throw CBroken("one line was printed, and " + QuotedText(strPrinted) + " came");
    strPrinted.resize(nEnd);
    if (strPrinted == szNoDocument)
        throw CNotExaminable("the server has no document open");
    return strPrinted;
}

std::string CServerPeer::ErrorInDocument(const std::string& strBody) const
{
    return Error(Selected(strBody));
}

bool CServerPeer::HasResultInDocument(const std::string& strBody) const
{
    const Reply reply = Send(Selected(strBody));
    MustHaveCome(reply);
    return reply.result.has_value();
}

std::vector<std::string> Items(const std::string& strPrinted)
{
    std::vector<std::string> items;
    std::size_t nAt = 0;
    while ((nAt = strPrinted.find_first_not_of("\r\n", nAt)) != std::string::npos)
    {
        const std::size_t nEnd = strPrinted.find_first_of("\r\n", nAt);
        items.push_back(strPrinted.substr(nAt, nEnd - nAt));
        if (items.back().size() > kLongestItem)
            throw CBroken("a line of " + std::to_string(items.back().size()) +
                          " bytes came; the link reads at most 999");
        nAt = nEnd;
    }
    if (items.empty())
        throw CBroken("nothing was printed");
    const double dCount = Number(items.front());
    items.erase(items.begin());
    if (dCount != static_cast<double>(items.size()))
        throw CBroken("the count says " + std::to_string(static_cast<long>(dCount)) + ", and " +
                      std::to_string(items.size()) + " lines that are not empty follow");
    return items;
}

double Regions(const CServerPeer& peer, bool fAudioSuite, int nTrack)
{
    const std::string strSelect =
        fAudioSuite ? "SelectAudioSuiteDocument()" : "SelectScriptDocument()";
    const std::string strPrinted =
        peer.PrintedWithoutError("if " + strSelect + " then\nprint(GetRegionCount(GetTrackID(" +
                                 std::to_string(nTrack) + ")))\nelse\nprint(0)\nend\n");
    return Number(strPrinted.substr(0, strPrinted.find_first_of("\r\n")));
}

double Number(const std::string& strLine)
{
    const std::optional<double> number = DecimalFrom<double>(strLine);
    if (!number)
        throw CBroken("a number was to be printed, and " + QuotedText(strLine) + " came");
    return *number;
}

} // namespace Tarvane::Conform
