#include "platform/gnustep/AppleEvents/Storage.h"

#include <memory>

namespace AppleEvents
{
namespace
{

Storage* StorageOf(const AEDesc* desc)
{
    return desc ? static_cast<Storage*>(static_cast<void*>(desc->dataHandle)) : nullptr;
}

AEDesc Wrap(DescType type, std::unique_ptr<Storage> storage)
{
    void* const handle = storage.release();
    return {type, static_cast<AEDataStorage>(handle)};
}

} // namespace

const BytesStorage* BytesOf(const AEDesc* desc)
{
    return dynamic_cast<const BytesStorage*>(StorageOf(desc));
}

EventStorage* EventOf(const AEDesc* desc)
{
    return dynamic_cast<EventStorage*>(StorageOf(desc));
}

AEDesc NewBytesDescriptor(DescType type, Bytes bytes)
{
    return Wrap(type, std::make_unique<BytesStorage>(std::move(bytes)));
}

AEDesc NewEventDescriptor(EventStorage event)
{
    return Wrap(typeAppleEvent, std::make_unique<EventStorage>(std::move(event)));
}

} // namespace AppleEvents

OSErr AEDisposeDesc(AEDesc* theAEDesc)
{
    if (theAEDesc)
    {
        delete AppleEvents::StorageOf(theAEDesc);
        *theAEDesc = AppleEvents::kNullDescriptor;
    }
    return noErr;
}
