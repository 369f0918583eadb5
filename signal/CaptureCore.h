// The signal side of a plug-in: takes what a host plays, keeps it in files, and hands the files to
// a view. Plain C++, for any host: it knows of no toolkit, no bus and no display.
#pragma once

#include "signal/PropertyListeners.h"
#include "signal/Take.h"
#include "signal/TakeFormat.h"
#include "signal/Transport.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Tarvane
{

struct CCaptureSettings
{
    /// Where takes and their journal go; it must exist by the first take. Empty:
    /// DefaultCaptureFolder() of signal/TakeFolder.h, which is made when it is needed.
    std::filesystem::path captureFolder;
    CTakeFormat format;
    /// The name under which an instance finds its takes again, see Restore. Empty: a new one.
    std::string strUuid;
    std::int32_t nTrack = 0; ///< what 64009 says until it is written
};

/// One plug-in instance.
///
/// A take is a stretch of unbroken timeline: it runs while the instance is armed and the transport
/// plays at speed 1. A position that is not the one behind the block before ends a take and begins
/// the next at its own position; so does a block that is left out. Nothing is joined over a gap and
/// no sample stands twice. A take that is over becomes an element: its file gets its name, its
/// record is published under 64002, 64000 is raised, and it waits to be acknowledged by 64008.
///
/// Nothing that was captured is ever deleted. Each take is in the journal from its first block
/// until its fate is settled, so that what waits when a host ends, crashes or is killed is found
/// again by the next instance of the same UUID: a take being written up to its last whole block.
///
/// Threads. One thread at a time, the audio thread, calls Process and ArmFromPort; these neither
/// lock nor allocate, and make no system call but waking the writer, which is a thread of the
/// instance's own. All other operations: any thread, but the audio thread; none holds a lock while
/// listeners, the log or the observer run. Those may call the instance, but not destroy it.
///
/// Notifications are raised by the writer, but for those of 64004 and 64000 that a call brings
/// about (a write of 64005 or 64008, ServerAppeared, ViewJoined), which come on the caller's thread
/// before the call returns. 64004 for a change of the armed state comes before the first 64010 of
/// the take that it starts, and before the 64000 of the take that it ends. 64006 is never raised.
class CCaptureCore
{
public:
    using Listeners = CPropertyListenersOf<CCaptureCore*>;

    /// Allocates all that Process needs: about four seconds of audio, and 4 MiB at least. Throws
    /// std::invalid_argument for a format outside what CTakeFormat allows.
    explicit CCaptureCore(const CCaptureSettings& settings);
    /// As Close. Process is not called any more.
    ~CCaptureCore();
    CCaptureCore(const CCaptureCore&) = delete;
    CCaptureCore& operator=(const CCaptureCore&) = delete;

    // --- The audio thread

    /// The next block: nFrames samples at each of the channels of the format. Real-time safe,
    /// except when the transport is freewheeling: then it waits until the writer has room. A block
    /// that finds no room otherwise is left out as a whole: the take ends before it, what is lost
    /// is counted, and the next take begins when there is room again.
    void Process(const CTransport& transport, const float* const* ppChannels,
                 std::uint32_t nFrames) noexcept;
    /// For a format with other samples.
    void Process(const CTransport& transport, const std::int32_t* const* ppChannels,
                 std::uint32_t nFrames) noexcept;
    void Process(const CTransport& transport, const double* const* ppChannels,
                 std::uint32_t nFrames) noexcept;

    /// Arms or disarms from here on, as a write of 64005 does; 64004 is raised by the writer.
    void ArmFromPort(bool fArm) noexcept;

    // --- Beside no call of Process

    /// Ends the take that runs, as a host does that deactivates the plug-in.
    void EndTake();
    /// Changes what the next takes are made of; ends the take that runs. Throws as the constructor.
    void Prepare(const CTakeFormat& format);
    /// Returns when all that Process was given is in its file, and has been told. Not inside a
    /// listener, the log or the observer.
    void WaitUntilWritten();
    /// Ends capturing for good: finishes the file of a take that runs, as the destructor does, and
    /// raises nothing any more. The observer is told of the take. Properties can still be read and
    /// written. Not inside a listener, the log or the observer.
    void Close();

    // --- The property contract, in bytes (TarvaneLinkAU/TarvaneLinkProperties.h)

    /// Statuses are those of signal/PropertyStatus.h. A read takes a room of at least the value's
    /// size, a write exactly that; either pointer of GetPropertyInfo may be null.
    std::int32_t GetPropertyInfo(std::uint32_t nId, std::uint32_t nScope, std::uint32_t nElement,
                                 std::uint32_t* pnSize, bool* pfWritable) const;
    std::int32_t GetProperty(std::uint32_t nId, std::uint32_t nScope, std::uint32_t nElement,
                             void* pData, std::uint32_t* pnSize) const;
    std::int32_t SetProperty(std::uint32_t nId, std::uint32_t nScope, std::uint32_t nElement,
                             const void* pData, std::uint32_t nSize);
    /// The guarantees of adding and removing stand in signal/PropertyListeners.h.
    void AddListener(std::uint32_t nId, Listeners::Proc pProc, void* pUserData);
    bool RemoveListener(std::uint32_t nId, Listeners::Proc pProc, void* pUserData);

    /// As a write of 64005.
    void SetArmed(bool fArm);
    bool IsArmed() const;

    // --- The state that a host keeps with its session: never armed

    std::string Uuid() const;
    std::int32_t Track() const;
    /// Takes over a kept state. What the UUID's journal still holds is offered, one 64000 each, as
    /// soon as the writer has looked at it. A UUID that another instance holds, in this process or
    /// another, is that of a copy: the instance then gets a new one, which Uuid() tells. Takes that
    /// wait here already stay, and go with the instance to the new UUID. Text that is no UUID is
    /// ignored.
    void Restore(const std::string& strUuid, std::int32_t nTrack);
    /// Where takes and journal go from the next take on; as in the settings. What waits stays where
    /// it is, and what the journal there holds is offered.
    void SetCaptureFolder(const std::filesystem::path& folder);

    // --- What the process that holds the view tells

    /// What became of the element: to be told before its acknowledge is written. Without it an
    /// element that is acknowledged as not delivered counts as unreachable. Words are the server's,
    /// UTF-8. The position is the one on the server's timeline that the take was meant for, in
    /// samples, 0 where it is not known.
    void TellOutcome(std::int32_t nElement, TakeOutcome outcome, std::string_view words,
                     double dExpectedPosition);
    /// A server has appeared: what was unreachable is offered once more, each as a new element with
    /// a 64000 of its own, behind a 64004 for which the view reads the tracks. Raises nothing when
    /// there is no such take. One that a view has in hand meanwhile, and then cannot deliver, is
    /// offered again with its acknowledge.
    void ServerAppeared();
    /// A view has joined and listens: announces each take that waits, one 64000 each, in order.
    void ViewJoined();

    // --- What to tell a user

    /// A sentence or two, UTF-8, for a plain window or a log: what runs, waits, or went wrong.
    std::string StatusText() const;
    /// Of all takes of this instance: frames that came while a take should have run and could not
    /// be kept.
    std::uint64_t LostFrames() const;
    /// Takes that wait for a view, and those that wait for a server to appear.
    std::size_t Waiting() const;
    bool IsWaiting(std::uint32_t nTake) const; ///< the take of this number, for a view
    std::size_t Unreachable() const;
    /// True from the first block of a take until it is published or has failed.
    bool IsCapturing() const;

    /// Told of each change of a take, after the listeners have been. Null for nobody.
    void SetObserver(std::function<void(const CTake&)> observer);
    /// Where a line goes for what went wrong and what was found in the journal. Null for nobody.
    void SetLog(std::function<void(const std::string&)> log);

private:
    class Parts;
    std::unique_ptr<Parts> m_pParts;
};

} // namespace Tarvane
