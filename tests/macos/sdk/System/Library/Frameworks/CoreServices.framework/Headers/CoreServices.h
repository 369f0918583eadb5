// The data model, the errors and the receiving side of Apple events. Their own headers (AE/...) lie
// inside of this framework, where no include by their name finds them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

enum
{
    userCanceledErr = -128,
    memFullErr = -108,
    paramErr = -50,
    procNotFound = -600,
    bufferIsSmall = -607,
    connectionInvalid = -609
};

enum
{
    errAECoercionFail = -1700,
    errAEDescNotFound = -1701,
    errAECorruptData = -1702,
    errAEWrongDataType = -1703,
    errAENotAEDesc = -1704,
    errAENotAppleEvent = -1707,
    errAEEventNotHandled = -1708,
    errAEUnknownSendMode = -1710,
    errAETimeout = -1712,
    errAEUnknownAddressType = -1716,
    errAEHandlerNotFound = -1717,
    errAEDuplicateHandler = -1736,
    errAEEventNotPermitted = -1743,
    errAEEventFailed = -10000
};

typedef ResType DescType;
typedef FourCharCode AEKeyword;
typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
typedef SInt16 AEReturnID;
typedef SInt32 AETransactionID;
typedef SInt32 AESendMode;
typedef SInt16 AESendPriority;
typedef struct OpaqueAEDataStorageType* AEDataStorageType;
typedef AEDataStorageType* AEDataStorage;

#pragma pack(push, 2)
struct AEDesc
{
    DescType descriptorType;
    AEDataStorage dataHandle;
};
#pragma pack(pop)
typedef struct AEDesc AEDesc;
typedef AEDesc AEAddressDesc;
typedef AEDesc AEDescList;
typedef AEDescList AERecord;
typedef AERecord AppleEvent;

enum
{
    typeChar = 'TEXT',
    typeSInt16 = 'shor',
    typeSInt32 = 'long',
    typeUTF8Text = 'utf8',
    typeUnicodeText = 'utxt',
    typeType = 'type',
    typeApplSignature = 'sign',
    typeAppleEvent = 'aevt',
    typeNull = 'null',
    typeWildCard = '****',
    keyDirectObject = '----',
    keyEventClassAttr = 'evcl',
    keyEventIDAttr = 'evid',
    keySenderPIDAttr = 'spid'
};
enum
{
    kAutoGenerateReturnID = -1,
    kAnyTransactionID = 0
};
enum
{
    kAENoReply = 0x00000001,
    kAEQueueReply = 0x00000002,
    kAEWaitReply = 0x00000003,
    kAENeverInteract = 0x00000010,
    kAECanInteract = 0x00000020,
    kAEAlwaysInteract = 0x00000030,
    kAECanSwitchLayer = 0x00000040
};
enum
{
    kAENormalPriority = 0x00000000,
    kAEHighPriority = 0x00000001,
    kAEDefaultTimeout = -1,
    kNoTimeOut = -2
};

typedef OSErr (*AEEventHandlerProcPtr)(const AppleEvent*, AppleEvent* reply, void* refcon);
typedef AEEventHandlerProcPtr AEEventHandlerUPP;

typedef struct
{
    unsigned int msgh_bits;
    unsigned int msgh_size;
    unsigned int msgh_remote_port;
    unsigned int msgh_local_port;
    unsigned int msgh_voucher_port;
    int msgh_id;
} mach_msg_header_t;
typedef unsigned int mach_port_t;

extern "C"
{
    OSErr AECreateDesc(DescType, const void*, Size, AEDesc*);
    OSErr AEDisposeDesc(AEDesc*);
    OSErr AEGetDescData(const AEDesc*, void*, Size);
    Size AEGetDescDataSize(const AEDesc*);
    OSErr AECreateAppleEvent(AEEventClass, AEEventID, const AEAddressDesc*, AEReturnID,
                             AETransactionID, AppleEvent*);
    OSErr AEPutParamPtr(AppleEvent*, AEKeyword, DescType, const void*, Size);
    OSErr AEGetParamPtr(const AppleEvent*, AEKeyword, DescType desired, DescType* actual, void*,
                        Size maximum, Size* actualSize);
    OSErr AESizeOfParam(const AppleEvent*, AEKeyword, DescType*, Size*);
    OSErr AEGetAttributePtr(const AppleEvent*, AEKeyword, DescType desired, DescType* actual, void*,
                            Size maximum, Size* actualSize);
    OSErr AEInstallEventHandler(AEEventClass, AEEventID, AEEventHandlerUPP, void*, Boolean);
    OSErr AERemoveEventHandler(AEEventClass, AEEventID, AEEventHandlerUPP, Boolean);
    OSErr AESuspendTheCurrentEvent(const AppleEvent*);
    OSErr AEResumeTheCurrentEvent(const AppleEvent*, const AppleEvent* reply, AEEventHandlerUPP,
                                  void*);
    mach_port_t AEGetRegisteredMachPort(void);
    OSStatus AEProcessMessage(mach_msg_header_t*);
}
