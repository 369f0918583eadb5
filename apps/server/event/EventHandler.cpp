#include "apps/server/event/EventHandler.h"

#include "apps/server/event/FaultyReply.h"
#include "apps/server/faults/SessionMishaps.h"
#include "apps/support/event/EventReceiver.h"
#include "apps/support/process/ChildProcess.h"
#include "utils/UnicodeText.h"

#include <TarvanePlatform/Application.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
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

std::int64_t SenderOf(const AppleEvent* pEvent)
{
    SInt32 nProcess = 0;
    AEGetAttributePtr(pEvent, keySenderPIDAttr, typeSInt32, nullptr, &nProcess, sizeof nProcess,
                      nullptr);
    return nProcess;
}

std::vector<std::string> NamesOf(const FaultSet& faults)
{
    std::vector<std::string> names;
    for (const Fault fault : faults)
        names.push_back(NameOf(fault));
    return names;
}

} // namespace

CEventHandler::CEventHandler(CCommandQueue& queue, CEventLog& log, CMisbehaviour misbehaviour,
                             FaultWaits waits)
    : m_queue(queue), m_log(log), m_misbehaviour(std::move(misbehaviour)), m_waits(std::move(waits))
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

OSErr CEventHandler::Handle(const AppleEvent* pEvent, const AppleEvent* pReply)
{
    const std::int64_t nNumber = ++m_nEvents;
    const FaultSet faults = m_misbehaviour.At(nNumber);
    std::string strScript;
    OSErr nStatus = ReadScript(pEvent, strScript);
    if (nStatus == noErr)
        nStatus = AESuspendTheCurrentEvent(pEvent);
    if (nStatus != noErr)
        return nStatus;
    const auto pKept =
        std::make_shared<Event>(Event{nNumber, SenderOf(pEvent), faults, *pEvent, *pReply});
    Command command;
    command.nClient = pKept->nProcess;
    command.begin = [this, pKept, strScript] { return Begin(*pKept, strScript); };
    command.end = [this, pKept](const CommandReply& reply) { End(*pKept, reply); };
    command.strScript = std::move(strScript);
    m_queue.Add(std::move(command));
    return noErr;
}

Trouble CEventHandler::Begin(Event& event, const std::string& strScript)
{
    if (!std::exchange(event.fBegun, true))
    {
        m_log.In(event.nNumber, strScript);
        m_log.Faults(event.nNumber, NamesOf(event.faults));
        SufferBefore(event.faults);
    }
    if (event.faults.count(Fault::FrozenCounter) == 0)
        m_frozenCount.reset();
    else if (!m_frozenCount)
        m_frozenCount = m_queue.UpdateCount();
    return {event.faults.count(Fault::DocumentVanishes) != 0, m_frozenCount,
            FaultsOfFunctions(event.faults)};
}

void CEventHandler::End(Event& event, const CommandReply& reply)
{
    const FaultSet& faults = event.faults;
    if (faults.count(Fault::ExitAfterEffect) != 0)
        _exit(kExitByFault);
    m_log.Out(event.nNumber, reply);
    if (reply.fChanged)
        m_log.Change(event.nNumber, event.nProcess, ProgramOf(event.nProcess));
    // The sender may not want a reply; the command has been run all the same.
    if (event.reply.descriptorType != typeNull)
    {
        if (faults.count(Fault::NoReply) != 0)
            return;
        if (faults.count(Fault::LateReply) != 0)
            m_waits.delay();
        if (const OSErr nStatus = PutReply(&event.reply, reply, faults); nStatus != noErr)
            std::fprintf(stderr, "tarvane-server: a reply could not be made: status %d\n", nStatus);
    }
    // kAENoDispatch, which is a number elsewhere and no pointer.
    AEResumeTheCurrentEvent(&event.event, &event.reply, nullptr, nullptr);
}

void CEventHandler::SufferBefore(const FaultSet& faults)
{
    if (faults.count(Fault::Hang) != 0)
    {
        m_waits.untilEnd();
        throw std::runtime_error("the server ends");
    }
    if (faults.count(Fault::ExitBeforeEffect) != 0)
        _exit(kExitByFault);
    if (faults.count(Fault::TrackVanishes) != 0 || faults.count(Fault::TracksMove) != 0)
        m_queue.Change([&](CSessionDatabase& session) { Befall(session, faults); });
    if (faults.count(Fault::EventFlood) != 0)
        m_flood.Begin(kSignature);
}

} // namespace Tarvane::Server
