#include "platform/gnustep/AppleEvents/Storage.h"
#include "tests/platform/AppleEvents/EventFixture.h"

#include <array>
#include <cstring>

using namespace AppleEventTests;

namespace
{

std::string DataOf(Desc& desc)
{
    std::string data(std::size_t(AEGetDescDataSize(&desc)), '\0');
    EXPECT_EQ(noErr, AEGetDescData(&desc, data.data(), Size(data.size())));
    return data;
}

class AEDataModel : public testing::Test
{
protected:
    AEDataModel() { Put(m_event, 'Rslt', typeUnicodeText, "12345678"); }

    Desc m_event = NewEvent('Echo');
};

} // namespace

TEST_F(AEDataModel, DescriptorKeepsTypeAndBytes)
{
    const std::string bytes("\0\xff\x80 a", 5);
    Desc desc(typeUTF8Text, bytes.data(), Size(bytes.size()));
    EXPECT_EQ(DescType(typeUTF8Text), desc.descriptorType);
    EXPECT_EQ(bytes, DataOf(desc));
}

TEST_F(AEDataModel, DescriptorOfNoBytesIsLegal)
{
    Desc desc(typeUnicodeText, nullptr, 0);
    EXPECT_EQ(DescType(typeUnicodeText), desc.descriptorType);
    EXPECT_EQ(0, AEGetDescDataSize(&desc));
}

TEST_F(AEDataModel, NullDescriptorHoldsNothing)
{
    AEDesc desc{typeChar, nullptr};
    EXPECT_EQ(noErr, AECreateDesc(typeNull, nullptr, 0, &desc));
    EXPECT_EQ(DescType(typeNull), desc.descriptorType);
    EXPECT_EQ(nullptr, desc.dataHandle);
}

TEST_F(AEDataModel, BytesThatArePromisedMustBeGiven)
{
    AEDesc desc{typeChar, nullptr};
    EXPECT_EQ(paramErr, AECreateDesc(typeChar, nullptr, 1, &desc));
    EXPECT_EQ(DescType(typeNull), desc.descriptorType);
    EXPECT_EQ(paramErr, AECreateDesc(typeChar, "a", -1, &desc));
    EXPECT_EQ(paramErr, AECreateDesc(typeChar, "a", 1, nullptr));
    EXPECT_EQ(paramErr, AEPutParamPtr(&m_event, 'Rslt', typeChar, nullptr, 4));
    EXPECT_EQ(paramErr, AEPutParamPtr(&m_event, 'Rslt', typeChar, "a", -1));
    EXPECT_EQ("12345678", Text(m_event, 'Rslt'));
}

TEST_F(AEDataModel, WhatCannotBeAllocatedIsMemFull)
{
    EXPECT_EQ(memFullErr,
              AppleEvents::WithoutExceptions([]() -> OSErr { throw std::bad_alloc(); }));
    EXPECT_EQ(memFullErr,
              AppleEvents::WithoutExceptions([]() -> OSErr { throw std::length_error(""); }));
    EXPECT_EQ(-7, AppleEvents::WithoutExceptions([] { return OSErr(-7); }));
}

TEST_F(AEDataModel, DisposingTwiceDoesNoHarm)
{
    AEDesc desc{typeNull, nullptr};
    ASSERT_EQ(noErr, AECreateDesc(typeChar, "abc", 3, &desc));
    EXPECT_EQ(noErr, AEDisposeDesc(&desc));
    EXPECT_EQ(DescType(typeNull), desc.descriptorType);
    EXPECT_EQ(nullptr, desc.dataHandle);
    EXPECT_EQ(noErr, AEDisposeDesc(&desc));
    EXPECT_EQ(noErr, AEDisposeDesc(nullptr));
}

TEST_F(AEDataModel, DescDataIsCutAtTheBuffer)
{
    Desc desc(typeChar, "abcdef", 6);
    std::array<char, 4> buffer{'x', 'x', 'x', 'x'};
    EXPECT_EQ(noErr, AEGetDescData(&desc, buffer.data(), 3));
    EXPECT_EQ("abcx", std::string(buffer.data(), 4));
}

TEST_F(AEDataModel, ShortBufferGetsAsMuchAsItHoldsAndTheRealSize)
{
    std::array<char, 5> buffer{'x', 'x', 'x', 'x', 'x'};
    DescType type = 0;
    Size size = 0;
    EXPECT_EQ(noErr,
              AEGetParamPtr(&m_event, 'Rslt', typeUnicodeText, &type, buffer.data(), 4, &size));
    EXPECT_EQ("1234x", std::string(buffer.data(), 5));
    EXPECT_EQ(8, size);
    EXPECT_EQ(DescType(typeUnicodeText), type);
}

TEST_F(AEDataModel, LongBufferIsWrittenNoFurtherThanTheParameter)
{
    std::array<char, 10> buffer{};
    buffer.fill('x');
    Size size = 0;
    EXPECT_EQ(noErr,
              AEGetParamPtr(&m_event, 'Rslt', typeUnicodeText, nullptr, buffer.data(), 10, &size));
    EXPECT_EQ("12345678xx", std::string(buffer.data(), 10));
    EXPECT_EQ(8, size);
}

TEST_F(AEDataModel, AbsentKeyIsNotFound)
{
    Size size = 77;
    EXPECT_EQ(errAEDescNotFound,
              AEGetParamPtr(&m_event, 'Errr', typeUnicodeText, nullptr, nullptr, 0, &size));
    EXPECT_EQ(errAEDescNotFound, AESizeOfParam(&m_event, 'Errr', nullptr, &size));
    EXPECT_EQ(77, size);
}

TEST_F(AEDataModel, NoTypeIsCoercedIntoAnother)
{
    std::array<char, 8> buffer{'x'};
    DescType type = 77;
    Size size = 77;
    EXPECT_EQ(errAECoercionFail,
              AEGetParamPtr(&m_event, 'Rslt', typeUTF8Text, &type, buffer.data(), 8, &size));
    EXPECT_EQ('x', buffer[0]);
    EXPECT_EQ(77, size);
    EXPECT_EQ(77u, type);
}

TEST_F(AEDataModel, WildCardTakesEveryType)
{
    std::array<char, 8> buffer{};
    DescType type = 0;
    EXPECT_EQ(noErr,
              AEGetParamPtr(&m_event, 'Rslt', typeWildCard, &type, buffer.data(), 8, nullptr));
    EXPECT_EQ(DescType(typeUnicodeText), type);
    EXPECT_EQ("12345678", std::string(buffer.data(), 8));
}

TEST_F(AEDataModel, BufferMayBeNullOnlyWithoutASize)
{
    EXPECT_EQ(noErr, AEGetParamPtr(&m_event, 'Rslt', typeWildCard, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(paramErr,
              AEGetParamPtr(&m_event, 'Rslt', typeWildCard, nullptr, nullptr, 1, nullptr));
    char buffer = 0;
    EXPECT_EQ(paramErr,
              AEGetParamPtr(&m_event, 'Rslt', typeWildCard, nullptr, &buffer, -1, nullptr));
}

TEST_F(AEDataModel, SizeOfParameterComesWithItsType)
{
    DescType type = 0;
    Size size = 0;
    EXPECT_EQ(noErr, AESizeOfParam(&m_event, 'Rslt', &type, &size));
    EXPECT_EQ(DescType(typeUnicodeText), type);
    EXPECT_EQ(8, size);
}

TEST_F(AEDataModel, ParameterReplacesTheOneBefore)
{
    Put(m_event, 'Rslt', typeChar, "new");
    EXPECT_EQ("new", Text(m_event, 'Rslt'));
    DescType type = 0;
    EXPECT_EQ(noErr, AESizeOfParam(&m_event, 'Rslt', &type, nullptr));
    EXPECT_EQ(DescType(typeChar), type);
}

TEST_F(AEDataModel, EmptyParameterIsPresent)
{
    Put(m_event, 'Errr', typeUnicodeText, "");
    Size size = 77;
    EXPECT_EQ(noErr, AEGetParamPtr(&m_event, 'Errr', typeUnicodeText, nullptr, nullptr, 0, &size));
    EXPECT_EQ(0, size);
}

TEST_F(AEDataModel, ClassAndIdAreAttributes)
{
    UInt32 value = 0;
    DescType type = 0;
    Size size = 0;
    EXPECT_EQ(noErr, AEGetAttributePtr(&m_event, keyEventClassAttr, typeType, &type, &value,
                                       sizeof value, &size));
    EXPECT_EQ(UInt32('Test'), value);
    EXPECT_EQ(DescType(typeType), type);
    EXPECT_EQ(4, size);
    EXPECT_EQ(noErr, AEGetAttributePtr(&m_event, keyEventIDAttr, typeWildCard, nullptr, &value,
                                       sizeof value, nullptr));
    EXPECT_EQ(UInt32('Echo'), value);
    EXPECT_EQ(errAEDescNotFound, AEGetAttributePtr(&m_event, 'Rslt', typeWildCard, nullptr, &value,
                                                   sizeof value, nullptr));
}

TEST_F(AEDataModel, OnlyEventsHaveParameters)
{
    Desc text(typeChar, "abc", 3);
    Desc null;
    for (Desc* const desc : {&text, &null})
    {
        AEDesc* const raw = desc;
        EXPECT_EQ(errAENotAppleEvent, AEPutParamPtr(raw, 'Rslt', typeChar, "a", 1));
        EXPECT_EQ(errAENotAppleEvent,
                  AEGetParamPtr(raw, 'Rslt', typeWildCard, nullptr, nullptr, 0, nullptr));
        EXPECT_EQ(errAENotAppleEvent, AESizeOfParam(raw, 'Rslt', nullptr, nullptr));
        EXPECT_EQ(errAENotAppleEvent,
                  AEGetAttributePtr(raw, keyEventIDAttr, typeType, nullptr, nullptr, 0, nullptr));
    }
    EXPECT_EQ(errAENotAppleEvent, AEPutParamPtr(nullptr, 'Rslt', typeChar, "a", 1));
    EXPECT_EQ(0, AEGetDescDataSize(&m_event));
    EXPECT_EQ(errAENotAEDesc, AEGetDescData(&m_event, nullptr, 0));
}

TEST_F(AEDataModel, RelabelledDescriptorIsStillWhatItWas)
{
    Desc text(typeChar, "abc", 3);
    text.descriptorType = typeAppleEvent;
    EXPECT_EQ(errAENotAppleEvent, AEPutParamPtr(&text, 'Rslt', typeChar, "a", 1));
    EXPECT_EQ("abc", DataOf(text));
}

TEST_F(AEDataModel, PublishedNumbers)
{
    EXPECT_EQ(0x2d2d2d2du, AEKeyword(keyDirectObject));
    EXPECT_EQ(0x75747874u, DescType(typeUnicodeText));
    EXPECT_EQ(0x7369676eu, DescType(typeApplSignature));
    EXPECT_EQ(0x6e756c6cu, DescType(typeNull));
    EXPECT_EQ(0x2a2a2a2au, DescType(typeWildCard));
    EXPECT_EQ(0x23, kAEWaitReply | kAECanInteract);
    EXPECT_EQ(0, kAENormalPriority);
    EXPECT_EQ(-1, kAutoGenerateReturnID);
    EXPECT_EQ(0, kAnyTransactionID);
    EXPECT_EQ(-1, kAEDefaultTimeout);
    EXPECT_EQ(-2, kNoTimeOut);
    EXPECT_EQ(-600, procNotFound);
    EXPECT_EQ(-609, connectionInvalid);
    EXPECT_EQ(-1700, errAECoercionFail);
    EXPECT_EQ(-1701, errAEDescNotFound);
    EXPECT_EQ(-1708, errAEEventNotHandled);
    EXPECT_EQ(-1712, errAETimeout);
}
