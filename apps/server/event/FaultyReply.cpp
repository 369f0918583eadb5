#include "apps/server/event/FaultyReply.h"

#include "utils/UnicodeText.h"

#include <algorithm>
#include <string>

namespace Tarvane::Server
{

namespace
{

constexpr AEKeyword kResultKey = 'Rslt';
constexpr AEKeyword kErrorKey = 'Errr';

constexpr std::size_t kHugeUnits = 8'000'000;
constexpr const char* kPlannedError = "this error was planned";
constexpr char16_t kHighSurrogate = 0xD800;
constexpr char16_t kLowSurrogate = 0xDC00;

OSErr PutUnits(AppleEvent* pReply, AEKeyword nKey, const std::u16string& units)
{
    return AEPutParamPtr(pReply, nKey, typeUnicodeText, units.data(),
                         static_cast<Size>(units.size() * sizeof(char16_t)));
}

OSErr PutResult(AppleEvent* pReply, const CommandReply& reply, const FaultSet& faults)
{
    if (faults.count(Fault::NoResult) != 0 ||
        (reply.fRefused && faults.count(Fault::RefusalWithResult) == 0))
        return noErr;
    const std::string& strSent = faults.count(Fault::EmptyResult) != 0 ? "" : reply.strResult;
    if (faults.count(Fault::WrongType) != 0)
        return AEPutParamPtr(pReply, kResultKey, typeChar, strSent.data(),
                             static_cast<Size>(strSent.size()));
    std::u16string units = Utf16FromUtf8(strSent);
    // The low half first: side by side the other way they would be a character.
    if (faults.count(Fault::LoneSurrogates) != 0)
        units.append({kLowSurrogate, kHighSurrogate});
    // Line ends more or less make no other list.
    if (faults.count(Fault::HugeReply) != 0)
        units.resize(std::max(units.size(), kHugeUnits), u'\n');
    return PutUnits(pReply, kResultKey, units);
}

std::string ErrorOf(const CommandReply& reply, const FaultSet& faults)
{
    return reply.strError.empty() && faults.count(Fault::ErrorBesideResult) != 0 ? kPlannedError
                                                                                 : reply.strError;
}

} // namespace

OSErr PutReply(AppleEvent* pReply, const CommandReply& reply, const FaultSet& faults)
{
    OSErr nStatus = PutResult(pReply, reply, faults);
    const std::string strError = ErrorOf(reply, faults);
    if (nStatus == noErr && !strError.empty())
        nStatus = PutUnits(pReply, kErrorKey, Utf16FromUtf8(strError));
    return nStatus;
}

} // namespace Tarvane::Server
