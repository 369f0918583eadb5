#include "apps/server/EventHandler.h"

#include "apps/server/FaultyReply.h"
#include "apps/server/SessionMishaps.h"
#include "apps/support/EventReceiver.h"
#include "utils/UnicodeText.h"

#include <TarvanePlatform/Application.h>

#include <cstdio>
#include <exception>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Tarvane::Server
{

namespace
{

constexpr OSType kSignature = 'TkNe';
constexpr AEEventClass kEventClass = 'TKNE';
constexpr AEEventID kEventId = 'LCmd';

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

std::vector<std::string> NamesOf(const FaultSet& faults)
{
    std::vector<std::string> names;
    for (const Fault fault : faults)
        names.push_back(NameOf(fault));
    return names;
}

} // namespace

CEventHandler::CEventHandler(CCommandProcessor& processor, CEventLog& log,
                             CMisbehaviour misbehaviour, FaultWaits waits)
    : m_processor(processor), m_log(log), m_misbehaviour(std::move(misbehaviour)),
      m_waits(std::move(waits))
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
    ReceiveEvents(kEventClass, kEventId, Receive, this);
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
    const FaultSet faults = m_misbehaviour.At(++m_nEvents);
    std::string strScript;
    const OSErr nStatus = ReadScript(pEvent, strScript);
    if (nStatus != noErr)
        return nStatus;
    m_log.In(m_nEvents, strScript);
    m_log.Faults(m_nEvents, NamesOf(faults));

    if (faults.count(Fault::Hang) != 0)
    {
        m_waits.untilEnd();
        return errAEEventFailed;
    }
    SufferBefore(faults);
    const CommandReply reply =
        m_processor.Run(strScript, {faults.count(Fault::DocumentVanishes) != 0,
                                    faults.count(Fault::FrozenCounter) != 0});
    if (faults.count(Fault::ExitAfterEffect) != 0)
        _exit(kExitByFault);

    m_log.Out(m_nEvents, reply);
    // The sender may not want a reply; the command has been run all the same.
    return pReply->descriptorType == typeNull ? OSErr(noErr)
                                              : Answer(pEvent, pReply, reply, faults);
}

void CEventHandler::SufferBefore(const FaultSet& faults)
{
    if (faults.count(Fault::ExitBeforeEffect) != 0)
        _exit(kExitByFault);
    if (faults.count(Fault::TrackVanishes) != 0 || faults.count(Fault::TracksMove) != 0)
        m_processor.Change([&](CSession& session) { Befall(session, faults); });
    if (faults.count(Fault::EventFlood) != 0)
        m_flood.Begin(kSignature);
}

OSErr CEventHandler::Answer(const AppleEvent* pEvent, AppleEvent* pReply, const CommandReply& reply,
                            const FaultSet& faults)
{
    if (faults.count(Fault::NoReply) != 0)
        return AESuspendTheCurrentEvent(pEvent);
    if (faults.count(Fault::LateReply) != 0)
        m_waits.delay();
    return PutReply(pReply, reply, faults);
}

} // namespace Tarvane::Server
