#include <AE/AEDataModel.h>

#include "platform/gnustep/AppleEvents/Storage.h"

#include <algorithm>
#include <cstring>
#include <optional>

using namespace AppleEvents;

namespace
{

bool IsReadable(const void* data, Size size)
{
    return size == 0 || (size > 0 && data);
}

Bytes CopyOf(const void* data, Size size)
{
    const auto* const first = static_cast<const unsigned char*>(data);
    return size == 0 ? Bytes() : Bytes(first, first + size);
}

void CopyOut(const Bytes& bytes, void* data, Size maximumSize)
{
    const std::size_t count = std::min(bytes.size(), std::size_t(maximumSize));
    if (count > 0)
        std::memcpy(data, bytes.data(), count);
}

OSErr Read(const Parameter& parameter, DescType desiredType, DescType* actualType, void* data,
           Size maximumSize, Size* actualSize)
{
    if (desiredType != typeWildCard && desiredType != parameter.type)
        return errAECoercionFail;
    if (!IsReadable(data, maximumSize))
        return paramErr;
    CopyOut(parameter.bytes, data, maximumSize);
    if (actualType)
        *actualType = parameter.type;
    if (actualSize)
        *actualSize = Size(parameter.bytes.size());
    return noErr;
}

std::optional<UInt32> AttributeOf(const EventStorage& event, AEKeyword keyword)
{
    if (keyword == keyEventClassAttr)
        return event.eventClass;
    if (keyword == keyEventIDAttr)
        return event.eventID;
    if (keyword == keySenderPIDAttr && event.senderProcess > 0)
        return UInt32(event.senderProcess);
    return std::nullopt;
}

} // namespace

OSErr AECreateDesc(DescType typeCode, const void* dataPtr, Size dataSize, AEDesc* result)
{
    if (!result)
        return paramErr;
    *result = kNullDescriptor;
    if (!IsReadable(dataPtr, dataSize))
        return paramErr;
    if (typeCode == typeNull && dataSize == 0)
        return noErr;
    return WithoutExceptions(
        [&]
        {
            *result = NewBytesDescriptor(typeCode, CopyOf(dataPtr, dataSize));
            return OSErr(noErr);
        });
}

OSErr AEGetDescData(const AEDesc* theAEDesc, void* dataPtr, Size maximumSize)
{
    if (!theAEDesc || !IsReadable(dataPtr, maximumSize))
        return paramErr;
    if (EventOf(theAEDesc))
        return errAENotAEDesc;
    if (const BytesStorage* const storage = BytesOf(theAEDesc))
        CopyOut(storage->bytes, dataPtr, maximumSize);
    return noErr;
}

Size AEGetDescDataSize(const AEDesc* theAEDesc)
{
    const BytesStorage* const storage = BytesOf(theAEDesc);
    return storage ? Size(storage->bytes.size()) : 0;
}

OSErr AECreateAppleEvent(AEEventClass theAEEventClass, AEEventID theAEEventID,
                         const AEAddressDesc* target, AEReturnID, AETransactionID,
                         AppleEvent* result)
{
    if (!result)
        return paramErr;
    *result = kNullDescriptor;
    return WithoutExceptions(
        [&]
        {
            EventStorage event;
            event.eventClass = theAEEventClass;
            event.eventID = theAEEventID;
            if (const BytesStorage* const address = BytesOf(target))
                event.target = {target->descriptorType, address->bytes};
            *result = NewEventDescriptor(std::move(event));
            return OSErr(noErr);
        });
}

OSErr AEPutParamPtr(AppleEvent* theAppleEvent, AEKeyword theAEKeyword, DescType typeCode,
                    const void* dataPtr, Size dataSize)
{
    EventStorage* const event = EventOf(theAppleEvent);
    if (!event)
        return errAENotAppleEvent;
    if (!IsReadable(dataPtr, dataSize))
        return paramErr;
    return WithoutExceptions(
        [&]
        {
            Parameter parameter{typeCode, CopyOf(dataPtr, dataSize)};
            event->parameters.insert_or_assign(theAEKeyword, std::move(parameter));
            return OSErr(noErr);
        });
}

OSErr AEGetParamPtr(const AppleEvent* theAppleEvent, AEKeyword theAEKeyword, DescType desiredType,
                    DescType* actualType, void* dataPtr, Size maximumSize, Size* actualSize)
{
    const EventStorage* const event = EventOf(theAppleEvent);
    if (!event)
        return errAENotAppleEvent;
    const auto found = event->parameters.find(theAEKeyword);
    if (found == event->parameters.end())
        return errAEDescNotFound;
    return Read(found->second, desiredType, actualType, dataPtr, maximumSize, actualSize);
}

OSErr AESizeOfParam(const AppleEvent* theAppleEvent, AEKeyword theAEKeyword, DescType* typeCode,
                    Size* dataSize)
{
    return AEGetParamPtr(theAppleEvent, theAEKeyword, typeWildCard, typeCode, nullptr, 0, dataSize);
}

OSErr AEGetAttributePtr(const AppleEvent* theAppleEvent, AEKeyword theAEKeyword,
                        DescType desiredType, DescType* typeCode, void* dataPtr, Size maximumSize,
                        Size* actualSize)
{
    const EventStorage* const event = EventOf(theAppleEvent);
    if (!event)
        return errAENotAppleEvent;
    const std::optional<UInt32> value = AttributeOf(*event, theAEKeyword);
    if (!value)
        return errAEDescNotFound;
    return WithoutExceptions(
        [&]
        {
            const DescType type = theAEKeyword == keySenderPIDAttr ? typeSInt32 : typeType;
            const Parameter attribute{type, CopyOf(&*value, sizeof *value)};
            return Read(attribute, desiredType, typeCode, dataPtr, maximumSize, actualSize);
        });
}
