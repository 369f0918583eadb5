#include "tests/support/ScriptedAppleEvents.h"

#include "tests/support/Utf16.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace TarvaneTests
{
namespace
{
ScriptedAppleEvents* g_pCurrent = nullptr;

constexpr AEKeyword kResultKey = 'Rslt';
constexpr AEKeyword kErrorKey = 'Errr';
constexpr AEDesc kNullDesc = {typeNull, nullptr};

[[noreturn]] void Misused(const char* szWhat)
{
    std::fprintf(stderr, "ScriptedAppleEvents: %s\n", szWhat);
    std::abort();
}

std::string Quoted(FourCharCode code)
{
    std::string text = "'";
    for (int nShift = 24; nShift >= 0; nShift -= 8)
        text.push_back(static_cast<char>(code >> nShift & 0xFF));
    return text + "'";
}

std::string InBytes(Size nBytes)
{
    return std::to_string(nBytes) + " bytes";
}

ScriptedAppleEvents::Bytes Copy(const void* pData, Size nBytes)
{
    const auto* pFirst = static_cast<const std::uint8_t*>(pData);
    return pData == nullptr ? ScriptedAppleEvents::Bytes()
                            : ScriptedAppleEvents::Bytes(pFirst, pFirst + nBytes);
}

std::u16string TextFrom(const ScriptedAppleEvents::Bytes& bytes)
{
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    if (!text.empty())
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    return text;
}
} // namespace

ScriptedAppleEvents::ScriptedAppleEvents()
{
    if (g_pCurrent != nullptr)
        Misused("a second object while one lives");
    g_pCurrent = this;
}

ScriptedAppleEvents::~ScriptedAppleEvents()
{
    g_pCurrent = nullptr;
}

ScriptedAppleEvents& ScriptedAppleEvents::Current()
{
    if (g_pCurrent == nullptr)
        Misused("an Apple event call without an object");
    return *g_pCurrent;
}

ScriptedAppleEvents::Bytes ScriptedAppleEvents::TextBytes(std::u16string_view text)
{
    return Copy(text.data(), static_cast<Size>(text.size() * sizeof(char16_t)));
}

ScriptedAppleEvents::Bytes ScriptedAppleEvents::TextBytes(std::string_view text)
{
    return TextBytes(Utf16FromUtf8(text));
}

void ScriptedAppleEvents::Print(std::string_view result)
{
    Play({noErr, TextBytes(result), std::nullopt});
}

void ScriptedAppleEvents::PrintWithError(std::string_view result, std::string_view error)
{
    Play({noErr, TextBytes(result), TextBytes(error)});
}

void ScriptedAppleEvents::FailSend(OSErr status)
{
    Play({status, std::nullopt, std::nullopt});
}

void ScriptedAppleEvents::Fail(Call call, int nOccurrence, OSErr status)
{
    m_failures[{call, nOccurrence}] = status;
}

std::vector<std::string> ScriptedAppleEvents::Lines() const
{
    std::vector<std::string> lines;
    for (const Record& record : m_records)
        lines.push_back(record.m_line);
    return lines;
}

int ScriptedAppleEvents::Count(Call call) const
{
    return static_cast<int>(std::count_if(m_records.begin(), m_records.end(),
                                          [call](const Record& record)
                                          { return record.m_call == call; }));
}

std::vector<std::string> ScriptedAppleEvents::Scripts() const
{
    std::vector<std::string> scripts;
    for (const Command& command : m_commands)
        scripts.push_back(Utf8FromUtf16(command.m_script));
    return scripts;
}

// Writes a call down and answers the failure that is due, or noErr.
OSErr ScriptedAppleEvents::Note(Call call, std::string line, Bytes bytes)
{
    m_records.push_back({call, std::move(line), std::move(bytes)});
    const auto found = m_failures.find({call, ++m_counts[call]});
    const OSErr status = found == m_failures.end() ? OSErr(noErr) : found->second;
    Conclude(status);
    return status;
}

void ScriptedAppleEvents::Conclude(OSErr status)
{
    if (status != noErr)
        m_records.back().m_line += " = " + std::to_string(status);
}

void ScriptedAppleEvents::Conclude(const AEDesc& made)
{
    m_records.back().m_line += " -> " + std::to_string(NumberOf(made));
}

void ScriptedAppleEvents::Make(DescType type, AEDesc* pResult)
{
    auto object = std::make_unique<Object>();
    object->m_nNumber = ++m_nLastNumber;
    const auto handle = reinterpret_cast<AEDataStorage>(object.get());
    m_objects[handle] = std::move(object);
    *pResult = {type, handle};
    Conclude(*pResult);
}

ScriptedAppleEvents::Object& ScriptedAppleEvents::Find(const AEDesc& desc)
{
    const auto found = m_objects.find(desc.dataHandle);
    if (found == m_objects.end())
        Misused("a descriptor that was never made, or was given back");
    return *found->second;
}

int ScriptedAppleEvents::NumberOf(const AEDesc& desc)
{
    return desc.dataHandle == nullptr ? 0 : Find(desc).m_nNumber;
}

OSErr ScriptedAppleEvents::CreateDesc(DescType type, const void* pData, Size nBytes,
                                      AEDesc* pResult)
{
    *pResult = kNullDesc;
    const OSErr status =
        Note(Call::CreateDesc, "AECreateDesc(" + Quoted(type) + ", " + InBytes(nBytes) + ")",
             Copy(pData, nBytes));
    if (status == noErr)
        Make(type, pResult);
    return status;
}

OSErr ScriptedAppleEvents::CreateAppleEvent(AEEventClass eventClass, AEEventID id,
                                            const AEAddressDesc* pTarget, AEReturnID nReturn,
                                            AETransactionID nTransaction, AppleEvent* pResult)
{
    *pResult = kNullDesc;
    const OSErr status =
        Note(Call::CreateAppleEvent,
             "AECreateAppleEvent(" + Quoted(eventClass) + ", " + Quoted(id) + ", target " +
                 std::to_string(NumberOf(*pTarget)) + ", return " + std::to_string(nReturn) +
                 ", transaction " + std::to_string(nTransaction) + ")");
    if (status == noErr)
        Make(typeAppleEvent, pResult);
    return status;
}

OSErr ScriptedAppleEvents::PutParamPtr(AppleEvent* pEvent, AEKeyword key, DescType type,
                                       const void* pData, Size nBytes)
{
    Object& event = Find(*pEvent);
    const OSErr status = Note(Call::PutParamPtr,
                              "AEPutParamPtr(" + std::to_string(event.m_nNumber) + ", " +
                                  Quoted(key) + ", " + Quoted(type) + ", " + InBytes(nBytes) + ")",
                              Copy(pData, nBytes));
    if (status == noErr)
        event.m_parameters[key] = Copy(pData, nBytes);
    return status;
}

OSErr ScriptedAppleEvents::Send(const AppleEvent* pEvent, AppleEvent* pReply, AESendMode mode,
                                AESendPriority priority, SInt32 nTicks, AEIdleUPP idle,
                                AEFilterUPP filter)
{
    const Object& event = Find(*pEvent);
    // As published: what the caller left in the placeholder is overwritten, and a placeholder that
    // holds something would be lost.
    if (pReply->descriptorType != typeNull)
        Misused("a reply placeholder that is not null");
    m_objects.erase(pReply->dataHandle);
    *pReply = kNullDesc;

    char szMode[16];
    std::snprintf(szMode, sizeof(szMode), "0x%x", static_cast<unsigned>(mode));
    OSErr status =
        Note(Call::Send, "AESend(" + std::to_string(event.m_nNumber) + ", mode " + szMode +
                             ", priority " + std::to_string(priority) + ", " +
                             std::to_string(nTicks) + " ticks" + (idle == nullptr ? "" : " idle") +
                             (filter == nullptr ? "" : " filter") + ")");
    if (status != noErr)
        return status;

    const auto script = event.m_parameters.find(keyDirectObject);
    m_commands.push_back(
        {script == event.m_parameters.end() ? std::u16string() : TextFrom(script->second), nTicks});
    if (m_whileSending)
        m_whileSending();

    Reply answer = {noErr, Bytes(), std::nullopt};
    if (!m_replies.empty())
    {
        answer = std::move(m_replies.front());
        m_replies.pop_front();
    }
    Conclude(answer.m_status);
    if (answer.m_status != noErr)
        return answer.m_status;

    Make(typeAppleEvent, pReply);
    Object& reply = Find(*pReply);
    if (answer.m_result)
        reply.m_parameters[kResultKey] = *answer.m_result;
    if (answer.m_error)
        reply.m_parameters[kErrorKey] = *answer.m_error;
    return noErr;
}

OSErr ScriptedAppleEvents::GetParamPtr(const AppleEvent* pEvent, AEKeyword key, DescType type,
                                       DescType* pActualType, void* pData, Size nRoom,
                                       Size* pActualBytes)
{
    Object& event = Find(*pEvent);
    const OSErr status = Note(Call::GetParamPtr,
                              "AEGetParamPtr(" + std::to_string(event.m_nNumber) + ", " +
                                  Quoted(key) + ", " + Quoted(type) + ", " + InBytes(nRoom) + ")");
    if (status != noErr)
        return status;

    const auto found = event.m_parameters.find(key);
    if (found == event.m_parameters.end())
    {
        Conclude(errAEDescNotFound);
        return errAEDescNotFound;
    }
    const Bytes& bytes = found->second;
    std::copy_n(bytes.begin(), std::min(bytes.size(), static_cast<std::size_t>(nRoom)),
                static_cast<std::uint8_t*>(pData));
    if (pActualType != nullptr)
        *pActualType = type;
    if (pActualBytes != nullptr)
        *pActualBytes =
            static_cast<Size>(bytes.size()) + (event.m_reads[key]++ > 0 ? m_nMoreWhenReadAgain : 0);
    return noErr;
}

OSErr ScriptedAppleEvents::DisposeDesc(AEDesc* pDesc)
{
    const OSErr status =
        Note(Call::DisposeDesc, "AEDisposeDesc(" + std::to_string(NumberOf(*pDesc)) + ")");
    m_objects.erase(pDesc->dataHandle);
    *pDesc = kNullDesc;
    return status;
}

} // namespace TarvaneTests

using TarvaneTests::ScriptedAppleEvents;

OSErr AECreateDesc(DescType type, const void* pData, Size nBytes, AEDesc* pResult)
{
    return ScriptedAppleEvents::Current().CreateDesc(type, pData, nBytes, pResult);
}

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID id, const AEAddressDesc* pTarget,
                         AEReturnID nReturn, AETransactionID nTransaction, AppleEvent* pResult)
{
    return ScriptedAppleEvents::Current().CreateAppleEvent(eventClass, id, pTarget, nReturn,
                                                           nTransaction, pResult);
}

OSErr AEPutParamPtr(AppleEvent* pEvent, AEKeyword key, DescType type, const void* pData,
                    Size nBytes)
{
    return ScriptedAppleEvents::Current().PutParamPtr(pEvent, key, type, pData, nBytes);
}

OSErr AESend(const AppleEvent* pEvent, AppleEvent* pReply, AESendMode mode, AESendPriority priority,
             SInt32 nTicks, AEIdleUPP idle, AEFilterUPP filter)
{
    return ScriptedAppleEvents::Current().Send(pEvent, pReply, mode, priority, nTicks, idle,
                                               filter);
}

OSErr AEGetParamPtr(const AppleEvent* pEvent, AEKeyword key, DescType type, DescType* pActualType,
                    void* pData, Size nRoom, Size* pActualBytes)
{
    return ScriptedAppleEvents::Current().GetParamPtr(pEvent, key, type, pActualType, pData, nRoom,
                                                      pActualBytes);
}

OSErr AEDisposeDesc(AEDesc* pDesc)
{
    return ScriptedAppleEvents::Current().DisposeDesc(pDesc);
}
