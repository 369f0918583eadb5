#include "apps/server/EventHandler.h"

#include "apps/server/UnicodeText.h"

#include <TarvanePlatform/Application.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

constexpr OSType kSignature = 'TkNe';
constexpr AEEventClass kEventClass = 'TKNE';
constexpr AEEventID kEventId = 'LCmd';
constexpr AEKeyword kResultKey = 'Rslt';
constexpr AEKeyword kErrorKey = 'Errr';

// What a process that ends by a planned fault leaves as its exit code.
constexpr int kExitByFault = 70;

OSErr ReadScript(const AppleEvent* pEvent, std::string& strScript)
{
    Size nBytes = 0;
    DescType nType = typeNull;
    OSErr nStatus = AESizeOfParam(pEvent, keyDirectObject, &nType, &nBytes);
    if (nStatus != noErr)
        return nStatus;
    if (nBytes % static_cast<Size>(sizeof(char16_t)) != 0)
        return errAECorruptData;
    std::u16string units(static_cast<std::size_t>(nBytes) / sizeof(char16_t), u'\0');
    nStatus = AEGetParamPtr(pEvent, keyDirectObject, typeUnicodeText, nullptr, units.data(), nBytes,
                            nullptr);
    strScript = Utf8FromUtf16(units);
    return nStatus;
}

OSErr PutText(AppleEvent* pReply, AEKeyword nKey, const std::string& strText)
{
    const std::u16string units = Utf16FromUtf8(strText);
    return AEPutParamPtr(pReply, nKey, typeUnicodeText, units.data(),
                         static_cast<Size>(units.size() * sizeof(char16_t)));
}

std::string WhyNotInstalled(OSErr nStatus)
{
    switch (nStatus)
    {
    case errAEDuplicateHandler:
        return "another server answers on this session bus; end it first";
    case procNotFound:
        return "there is no session bus; start one, with dbus-run-session for instance";
    default:
        return "cannot receive events: status " + std::to_string(nStatus);
    }
}

} // namespace

CEventHandler::CEventHandler(CCommandProcessor& processor, CEventLog& log,
                             std::vector<PlannedFault> faults, std::function<void()> waitForEnd)
    : m_processor(processor), m_log(log), m_faults(std::move(faults)),
      m_waitForEnd(std::move(waitForEnd))
{
}

CEventHandler::~CEventHandler()
{
    if (m_fInstalled)
        AERemoveEventHandler(kEventClass, kEventId, Receive, false);
}

void CEventHandler::Install()
{
    TarvaneSetApplicationSignature(kSignature);
    const OSErr nStatus = AEInstallEventHandler(kEventClass, kEventId, Receive, this, false);
    if (nStatus != noErr)
        throw std::runtime_error(WhyNotInstalled(nStatus));
    m_fInstalled = true;
}

OSErr CEventHandler::Receive(const AppleEvent* pEvent, AppleEvent* pReply, void* pHandler)
{
    try
    {
        return static_cast<CEventHandler*>(pHandler)->Handle(pEvent, pReply);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "tarvane-server: %s\n", error.what());
        return errAEEventFailed;
    }
}

OSErr CEventHandler::Handle(const AppleEvent* pEvent, AppleEvent* pReply)
{
    const Fault fault = FaultAt(m_faults, ++m_nEvents);
    std::string strScript;
    OSErr nStatus = ReadScript(pEvent, strScript);
    if (nStatus != noErr)
        return nStatus;
    m_log.In(m_nEvents, strScript);

    if (fault == Fault::Hang)
    {
        m_waitForEnd();
        return errAEEventFailed;
    }
    if (fault == Fault::ExitBeforeEffect)
        _exit(kExitByFault);
    const CommandReply reply = m_processor.Run(strScript);
    if (fault == Fault::ExitAfterEffect)
        _exit(kExitByFault);

    m_log.Out(m_nEvents, reply);
    // The sender may not want a reply; the command has been run all the same.
    if (pReply->descriptorType == typeNull)
        return noErr;
    nStatus = PutText(pReply, kResultKey, reply.strResult);
    if (nStatus == noErr && !reply.strError.empty())
        nStatus = PutText(pReply, kErrorKey, reply.strError);
    return nStatus;
}

} // namespace Tarvane::Server
