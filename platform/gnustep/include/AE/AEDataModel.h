// Descriptors and events as values: making, filling, reading and disposing of them.
//
// Nothing here talks to anybody. Any thread may call any function, but one descriptor belongs to
// one thread at a time. No function throws; what cannot be allocated is memFullErr.
#pragma once

#include <MacTypes.h>

using DescType = ResType;
using AEKeyword = FourCharCode;

/// Opaque. Only the functions below look inside.
using AEDataStorageType = struct OpaqueAEDataStorageType*;
using AEDataStorage = AEDataStorageType*;

/// A typed run of bytes, or an event. Whoever was given one by a function below, or by AESend, owns
/// it and gives it back with AEDisposeDesc. A copy of the structure is not a copy of the data.
struct AEDesc
{
    DescType descriptorType;
    AEDataStorage dataHandle;
};
using AEAddressDesc = AEDesc;
using AERecord = AEDesc;
using AppleEvent = AERecord;

using AEEventClass = FourCharCode;
using AEEventID = FourCharCode;
using AEReturnID = SInt16;
using AETransactionID = SInt32;

enum : DescType
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
    typeWildCard = '****'
};

enum : AEKeyword
{
    keyDirectObject = '----',
    keyEventClassAttr = 'evcl',
    keyEventIDAttr = 'evid',
    keySenderPIDAttr = 'spid'
};

enum : AEReturnID
{
    kAutoGenerateReturnID = -1
};

enum : AETransactionID
{
    kAnyTransactionID = 0
};

extern "C"
{

    /// Copies dataSize bytes. dataPtr may be null when dataSize is 0. On failure *result is a null
    /// descriptor. paramErr: result is null, dataSize is negative, or bytes are promised and not
    /// given.
    OSErr AECreateDesc(DescType typeCode, const void* dataPtr, Size dataSize, AEDesc* result);

    /// Gives the data back and turns *theAEDesc into a null descriptor, so that a second call does
    /// no harm. Null descriptors and a null pointer are accepted. Always noErr.
    OSErr AEDisposeDesc(AEDesc* theAEDesc);

    /// Copies at most maximumSize bytes of the descriptor's data to dataPtr.
    /// errAENotAEDesc: the descriptor is an event.
    OSErr AEGetDescData(const AEDesc* theAEDesc, void* dataPtr, Size maximumSize);

    /// Bytes of data; 0 for a null descriptor and for an event.
    Size AEGetDescDataSize(const AEDesc* theAEDesc);

    /// Makes an event without parameters. The target is copied. Ids are accepted and not carried:
    /// each AESend has its own reply. On failure *result is a null descriptor.
    OSErr AECreateAppleEvent(AEEventClass theAEEventClass, AEEventID theAEEventID,
                             const AEAddressDesc* target, AEReturnID returnID,
                             AETransactionID transactionID, AppleEvent* result);

    /// Copies dataSize bytes into the event under the keyword, in place of what stood there.
    /// errAENotAppleEvent: not an event (the reply of an event that wants none, for instance).
    OSErr AEPutParamPtr(AppleEvent* theAppleEvent, AEKeyword theAEKeyword, DescType typeCode,
                        const void* dataPtr, Size dataSize);

    /// Reads a parameter. At most maximumSize bytes are copied to dataPtr; *actualSize is the size
    /// of the whole parameter all the same, and a short buffer is no failure. desiredType is the
    /// parameter's own type or typeWildCard. dataPtr (with maximumSize 0), typeCode and actualSize
    /// may be null. errAEDescNotFound: no such parameter. errAECoercionFail: it has another type;
    /// nothing is copied and *typeCode and *actualSize are untouched. errAENotAppleEvent: not an
    /// event.
    OSErr AEGetParamPtr(const AppleEvent* theAppleEvent, AEKeyword theAEKeyword,
                        DescType desiredType, DescType* actualType, void* dataPtr, Size maximumSize,
                        Size* actualSize);

    /// Type and size in bytes of a parameter; typeCode and dataSize may be null.
    OSErr AESizeOfParam(const AppleEvent* theAppleEvent, AEKeyword theAEKeyword, DescType* typeCode,
                        Size* dataSize);

    /// Reads an attribute in the manner of AEGetParamPtr. The attributes are keyEventClassAttr and
    /// keyEventIDAttr, each a native 32-bit code of type typeType, and of an event that was
    /// received keySenderPIDAttr, the sending process as typeSInt32, unless the bus could not tell.
    OSErr AEGetAttributePtr(const AppleEvent* theAppleEvent, AEKeyword theAEKeyword,
                            DescType desiredType, DescType* typeCode, void* dataPtr,
                            Size maximumSize, Size* actualSize);
}
