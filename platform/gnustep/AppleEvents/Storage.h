// What stands behind the data handle of a descriptor.
#pragma once

#include <AE/AEDataModel.h>
#include <AE/AEErrors.h>

#include <cstddef>
#include <map>
#include <new>
#include <stdexcept>
#include <vector>

namespace AppleEvents
{

using Bytes = std::vector<unsigned char>;

struct Parameter
{
    DescType type;
    Bytes bytes;
};

/// By keyword, so that an event of a million parameters is still read in reasonable time.
using Parameters = std::map<AEKeyword, Parameter>;

struct Storage
{
    virtual ~Storage() = default;
};

struct BytesStorage : Storage
{
    explicit BytesStorage(Bytes data) : bytes(std::move(data)) {}

    Bytes bytes;
};

struct EventStorage : Storage
{
    AEEventClass eventClass = 0;
    AEEventID eventID = 0;
    Parameter target{typeNull, {}};
    Parameters parameters;
    SInt32 senderProcess = 0; ///< of an event that was received; 0 when it is not known
    bool fSuspended = false;  ///< no reply goes out when its handler returns
};

/// The kind is taken from the storage, never from descriptorType, which anybody may overwrite.
/// Null when the descriptor is null or of the other kind.
const BytesStorage* BytesOf(const AEDesc* desc);
EventStorage* EventOf(const AEDesc* desc);

inline constexpr AEDesc kNullDescriptor{typeNull, nullptr};

/// The caller of the interface owns what these return.
AEDesc NewBytesDescriptor(DescType type, Bytes bytes);
AEDesc NewEventDescriptor(EventStorage event);

/// Runs a body that returns a status; what cannot be allocated becomes memFullErr.
template <typename Body> OSErr WithoutExceptions(Body&& body) noexcept
{
    try
    {
        return body();
    }
    catch (const std::bad_alloc&)
    {
        return memFullErr;
    }
    catch (const std::length_error&)
    {
        return memFullErr;
    }
}

} // namespace AppleEvents
