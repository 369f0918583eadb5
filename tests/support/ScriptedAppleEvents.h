#pragma once

#include <Carbon/Carbon.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TarvaneTests
{

/// Stands where the Apple events framework would be linked: records what a sender asks of it, in
/// order and to the byte, and plays the replies and failures that the test has written down.
///
/// One object at a time; while it lives it is the framework. A test that links this and calls the
/// framework without such an object ends at once.
///
///     ScriptedAppleEvents events;
///     events.Print("2\n1\nVox\n");               // the first command's reply
///     events.FailSend(errAETimeout);             // the second's
///     ...
///     EXPECT_EQ(events.Scripts()[0], "...");
class ScriptedAppleEvents
{
public:
    using Bytes = std::vector<std::uint8_t>;

    enum class Call
    {
        CreateDesc,
        CreateAppleEvent,
        PutParamPtr,
        Send,
        GetParamPtr,
        DisposeDesc
    };

    /// What a server answers to one command. A parameter without a value is not in the reply.
    struct Reply
    {
        OSErr m_status = noErr;
        std::optional<Bytes> m_result;
        std::optional<Bytes> m_error;
    };

    /// One call. m_line shows it with every argument; descriptors go by the order in which they
    /// were made, from 1, and 0 is the null descriptor:
    ///
    ///     AECreateDesc('sign', 4 bytes) -> 1
    ///     AECreateAppleEvent('TKNE', 'LCmd', target 1, return -1, transaction 0) -> 2
    ///     AEPutParamPtr(2, '----', 'utxt', 12 bytes)
    ///     AESend(2, mode 0x23, priority 0, -1 ticks) -> 3
    ///     AEGetParamPtr(3, 'Rslt', 'utxt', 200 bytes)
    ///     AEDisposeDesc(2)
    ///
    /// AESend shows " idle" and " filter" behind the ticks if it was given such a procedure. A
    /// failed call makes no descriptor and ends in " = " and its status.
    struct Record
    {
        Call m_call;
        std::string m_line;
        Bytes m_bytes; ///< what the caller handed over
    };

    /// A command as it arrived at the server.
    struct Command
    {
        std::u16string m_script;
        SInt32 m_nTimeoutTicks;
    };

    ScriptedAppleEvents();
    ~ScriptedAppleEvents();
    ScriptedAppleEvents(const ScriptedAppleEvents&) = delete;
    ScriptedAppleEvents& operator=(const ScriptedAppleEvents&) = delete;

    /// Replies are played one a command, in the order in which they were added. When none is left
    /// a command has an empty result.
    void Play(Reply reply) { m_replies.push_back(std::move(reply)); }
    void Print(std::string_view result);
    void PrintWithError(std::string_view result, std::string_view error);
    void FailSend(OSErr status);

    /// Makes the nOccurrence-th call of a kind, from 1 and counted over the object's life, answer
    /// status and do nothing.
    void Fail(Call call, int nOccurrence, OSErr status);

    /// Every read of a reply's parameter behind the first reports so many bytes more than there
    /// are.
    void ReportMoreWhenReadAgain(Size nBytes) { m_nMoreWhenReadAgain = nBytes; }

    /// Called while a command is out: the caller of AESend still waits.
    std::function<void()> m_whileSending;

    const std::vector<Record>& Records() const { return m_records; }
    std::vector<std::string> Lines() const;
    int Count(Call call) const;

    const std::vector<Command>& Commands() const { return m_commands; }
    /// The scripts that were sent, as UTF-8.
    std::vector<std::string> Scripts() const;

    /// Descriptors that were made and not given back.
    std::size_t LiveDescriptors() const { return m_objects.size(); }

    static Bytes TextBytes(std::u16string_view text);
    static Bytes TextBytes(std::string_view text);

    OSErr CreateDesc(DescType type, const void* pData, Size nBytes, AEDesc* pResult);
    OSErr CreateAppleEvent(AEEventClass eventClass, AEEventID id, const AEAddressDesc* pTarget,
                           AEReturnID nReturn, AETransactionID nTransaction, AppleEvent* pResult);
    OSErr PutParamPtr(AppleEvent* pEvent, AEKeyword key, DescType type, const void* pData,
                      Size nBytes);
    OSErr Send(const AppleEvent* pEvent, AppleEvent* pReply, AESendMode mode,
               AESendPriority priority, SInt32 nTicks, AEIdleUPP idle, AEFilterUPP filter);
    OSErr GetParamPtr(const AppleEvent* pEvent, AEKeyword key, DescType type, DescType* pActualType,
                      void* pData, Size nRoom, Size* pActualBytes);
    OSErr DisposeDesc(AEDesc* pDesc);

    /// The one that stands for the framework now.
    static ScriptedAppleEvents& Current();

private:
    struct Object
    {
        int m_nNumber = 0;
        std::map<AEKeyword, Bytes> m_parameters;
        std::map<AEKeyword, int> m_reads;
    };

    OSErr Note(Call call, std::string line, Bytes bytes = {});
    void Conclude(OSErr status);
    void Conclude(const AEDesc& made);
    void Make(DescType type, AEDesc* pResult);
    Object& Find(const AEDesc& desc);
    int NumberOf(const AEDesc& desc);

    std::deque<Reply> m_replies;
    std::map<std::pair<Call, int>, OSErr> m_failures;
    std::map<Call, int> m_counts;
    std::vector<Record> m_records;
    std::vector<Command> m_commands;
    std::map<AEDataStorage, std::unique_ptr<Object>> m_objects;
    int m_nLastNumber = 0;
    Size m_nMoreWhenReadAgain = 0;
};

} // namespace TarvaneTests
