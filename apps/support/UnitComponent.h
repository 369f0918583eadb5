// The entry points of a component whose instances are objects of a class.
#pragma once

#include <AudioUnit/AudioUnit.h>
#include <CoreFoundation/CoreFoundation.h>

namespace Tarvane
{

/// Unit has SetUnit, GetPropertyInfo, GetProperty, SetProperty, Listeners and Stop, as CSignalSide
/// has them, and a constructor without arguments.
template <typename Unit> class UnitComponent
{
public:
    /// Makes a component known to the process.
    static AudioComponent Register(OSType nSubType, const char* szName)
    {
        AudioComponentDescription description{};
        description.componentType = kAudioUnitType_Effect;
        description.componentSubType = nSubType;
        description.componentManufacturer = 'Tarv';
        const CFStringRef strName =
            CFStringCreateWithCString(kCFAllocatorDefault, szName, kCFStringEncodingUTF8);
        const AudioComponent pRegistered =
            AudioComponentRegister(&description, strName, 0x00010000, &MakeInstance);
        CFRelease(strName);
        return pRegistered;
    }

    /// The component's factory function.
    static AudioComponentPlugInInterface* MakeInstance(const AudioComponentDescription*)
    {
        auto* pInstance = new Instance;
        pInstance->Open = &Open;
        pInstance->Close = &Close;
        pInstance->Lookup = &Lookup;
        pInstance->reserved = nullptr;
        return pInstance;
    }

private:
    /// The interface comes first: its address is the "self" of every entry point.
    struct Instance : AudioComponentPlugInInterface
    {
        Unit unit;
    };

    static Instance& InstanceOf(void* pSelf)
    {
        return *static_cast<Instance*>(static_cast<AudioComponentPlugInInterface*>(pSelf));
    }

    static OSStatus Succeed(void*) { return noErr; }

    static OSStatus GetPropertyInfo(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope nScope,
                                    AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable)
    {
        return InstanceOf(pSelf).unit.GetPropertyInfo(nId, nScope, nElement, pnSize, pfWritable);
    }

    static OSStatus GetProperty(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope nScope,
                                AudioUnitElement nElement, void* pData, UInt32* pnSize)
    {
        return InstanceOf(pSelf).unit.GetProperty(nId, nScope, nElement, pData, pnSize);
    }

    static OSStatus SetProperty(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope nScope,
                                AudioUnitElement nElement, const void* pData, UInt32 nSize)
    {
        return InstanceOf(pSelf).unit.SetProperty(nId, nScope, nElement, pData, nSize);
    }

    static OSStatus AddPropertyListener(void* pSelf, AudioUnitPropertyID nId,
                                        AudioUnitPropertyListenerProc pProc, void* pUserData)
    {
        if (pProc == nullptr)
        {
            return kAudioUnitErr_InvalidParameter;
        }
        InstanceOf(pSelf).unit.Listeners().Add(nId, pProc, pUserData);
        return noErr;
    }

    static OSStatus RemovePropertyListener(void* pSelf, AudioUnitPropertyID nId,
                                           AudioUnitPropertyListenerProc pProc)
    {
        return InstanceOf(pSelf).unit.Listeners().Remove(nId, pProc)
                   ? OSStatus(noErr)
                   : OSStatus(kAudioUnitErr_InvalidParameter);
    }

    static OSStatus RemovePropertyListenerWithUserData(void* pSelf, AudioUnitPropertyID nId,
                                                       AudioUnitPropertyListenerProc pProc,
                                                       void* pUserData)
    {
        return InstanceOf(pSelf).unit.Listeners().Remove(nId, pProc, pUserData)
                   ? OSStatus(noErr)
                   : OSStatus(kAudioUnitErr_InvalidParameter);
    }

    static OSStatus Open(void* pSelf, AudioComponentInstance pUnit)
    {
        InstanceOf(pSelf).unit.SetUnit(pUnit);
        return noErr;
    }

    static OSStatus Close(void* pSelf)
    {
        Instance* pInstance = &InstanceOf(pSelf);
        if (pInstance->unit.Listeners().IsNotifyingOnThisThread())
        {
            // The notification would return into an instance that is gone. It stops, and stays
            // behind.
            pInstance->unit.Stop();
            return kAudioUnitErr_CannotDoInCurrentContext;
        }
        delete pInstance;
        return noErr;
    }

    template <typename Method> static AudioComponentMethod EntryPoint(Method pMethod)
    {
        return reinterpret_cast<AudioComponentMethod>(pMethod);
    }

    static AudioComponentMethod Lookup(SInt16 nSelector)
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
};

} // namespace Tarvane
