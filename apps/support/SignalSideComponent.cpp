#include "apps/support/SignalSide.h"

#include <CoreFoundation/CoreFoundation.h>

namespace Tarvane
{
namespace
{

// The interface comes first: its address is the "self" of every entry point.
struct Instance : AudioComponentPlugInInterface
{
    CSignalSide side;
};

Instance& InstanceOf(void* pSelf)
{
    return *static_cast<Instance*>(static_cast<AudioComponentPlugInInterface*>(pSelf));
}

OSStatus Succeed(void*)
{
    return noErr;
}

OSStatus GetPropertyInfo(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope nScope,
                         AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable)
{
    return InstanceOf(pSelf).side.GetPropertyInfo(nId, nScope, nElement, pnSize, pfWritable);
}

OSStatus GetProperty(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope nScope,
                     AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    return InstanceOf(pSelf).side.GetProperty(nId, nScope, nElement, pData, pnSize);
}

OSStatus SetProperty(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope nScope,
                     AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    return InstanceOf(pSelf).side.SetProperty(nId, nScope, nElement, pData, nSize);
}

OSStatus AddPropertyListener(void* pSelf, AudioUnitPropertyID nId,
                             AudioUnitPropertyListenerProc pProc, void* pUserData)
{
    if (pProc == nullptr)
    {
        return kAudioUnitErr_InvalidParameter;
    }
    InstanceOf(pSelf).side.Listeners().Add(nId, pProc, pUserData);
    return noErr;
}

OSStatus RemovePropertyListener(void* pSelf, AudioUnitPropertyID nId,
                                AudioUnitPropertyListenerProc pProc)
{
    return InstanceOf(pSelf).side.Listeners().Remove(nId, pProc) ? noErr
                                                                 : kAudioUnitErr_InvalidParameter;
}

OSStatus RemovePropertyListenerWithUserData(void* pSelf, AudioUnitPropertyID nId,
                                            AudioUnitPropertyListenerProc pProc, void* pUserData)
{
    return InstanceOf(pSelf).side.Listeners().Remove(nId, pProc, pUserData)
               ? noErr
               : kAudioUnitErr_InvalidParameter;
}

OSStatus Open(void* pSelf, AudioComponentInstance pUnit)
{
    InstanceOf(pSelf).side.SetUnit(pUnit);
    return noErr;
}

OSStatus Close(void* pSelf)
{
    Instance* pInstance = &InstanceOf(pSelf);
    if (pInstance->side.Listeners().IsNotifyingOnThisThread())
    {
        // The notification would return into an instance that is gone. It stops, and stays behind.
        pInstance->side.Stop();
        return kAudioUnitErr_CannotDoInCurrentContext;
    }
    delete pInstance;
    return noErr;
}

template <typename Method> AudioComponentMethod EntryPoint(Method pMethod)
{
    return reinterpret_cast<AudioComponentMethod>(pMethod);
}

AudioComponentMethod Lookup(SInt16 nSelector)
{
    switch (nSelector)
    {
    case kAudioUnitInitializeSelect:
    case kAudioUnitUninitializeSelect:
        return EntryPoint(&Succeed);
    case kAudioUnitGetPropertyInfoSelect:
        return EntryPoint(&GetPropertyInfo);
    case kAudioUnitGetPropertySelect:
        return EntryPoint(&GetProperty);
    case kAudioUnitSetPropertySelect:
        return EntryPoint(&SetProperty);
    case kAudioUnitAddPropertyListenerSelect:
        return EntryPoint(&AddPropertyListener);
    case kAudioUnitRemovePropertyListenerSelect:
        return EntryPoint(&RemovePropertyListener);
    case kAudioUnitRemovePropertyListenerWithUserDataSelect:
        return EntryPoint(&RemovePropertyListenerWithUserData);
    default:
        return nullptr;
    }
}

AudioComponentPlugInInterface* MakeInstance(const AudioComponentDescription*)
{
    auto* pInstance = new Instance;
    pInstance->Open = &Open;
    pInstance->Close = &Close;
    pInstance->Lookup = &Lookup;
    pInstance->reserved = nullptr;
    return pInstance;
}

} // namespace

AudioComponent CSignalSide::Register()
{
    static const AudioComponent pComponent = []
    {
        AudioComponentDescription description{};
        description.componentType = kAudioUnitType_Effect;
        description.componentSubType = 'TnLk';
        description.componentManufacturer = 'Tarv';
        const CFStringRef strName =
            CFStringCreateWithCString(kCFAllocatorDefault, "Tarvane: Link", kCFStringEncodingUTF8);
        const AudioComponent pRegistered =
            AudioComponentRegister(&description, strName, 0x00010000, &MakeInstance);
        CFRelease(strName);
        return pRegistered;
    }();
    return pComponent;
}

CSignalSide* CSignalSide::Of(AudioUnit pUnit)
{
    CSignalSide* pSide = nullptr;
    UInt32 nSize = sizeof pSide;
    const OSStatus nStatus = AudioUnitGetProperty(pUnit, kSignalSideProperty_Self,
                                                  kAudioUnitScope_Global, 0, &pSide, &nSize);
    return nStatus == noErr ? pSide : nullptr;
}

} // namespace Tarvane
