#include "utils/Parameter.h"
#include "tests/utils/ParameterHelpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <typeinfo>

namespace
{
constexpr long long kLow64 = std::numeric_limits<long long>::min();

template <class Parameter> void ExpectFlat(Parameter&& parameter, const std::string& payload)
{
    const struct
    {
        int nToken;
        std::string name;
    } widths[] = {
        {-1, Bytes().Counted("Name")},
        {0, Bytes().U8(0)},
        {1, Bytes().U8(1)},
        {128, Bytes().U8(0x80)},
        {254, Bytes().U8(0xFE)},
        {255, Bytes().U8(0xFF).U8(0xFF).U8(0).U8(0)},
        {0x123456, Bytes().U8(0xFF).U8(0x56).U8(0x34).U8(0x12)},
        {0xFFFFFF, Bytes().U8(0xFF).U8(0xFF).U8(0xFF).U8(0xFF)},
        {0x1234567, Bytes().U8(0xFF).U8(0x67).U8(0x45).U8(0x23)},
        {-2, Bytes().U8(0xFF).U8(0xFE).U8(0xFF).U8(0xFF)},
    };
    for (const auto& width : widths)
    {
        SCOPED_TRACE(width.nToken);
        parameter.m_nToken = width.nToken;
        EXPECT_EQ(parameter.GetSizeOfName(), width.name.size());
        EXPECT_EQ(parameter.GetSize(), width.name.size() + payload.size());
        EXPECT_EQ(SaveFlat(parameter), width.name + payload);
    }
}

// Reads a name and a payload with every number of bytes missing at the end.
template <class Parameter> void ExpectShortValueStays(const std::string& payload)
{
    const std::string name = Bytes().Counted("N");
    for (std::size_t nKept = 0; nKept < payload.size(); ++nKept)
    {
        Parameter parameter;
        const std::string before = SaveFlat(parameter).substr(4);
        EXPECT_EQ(LoadFlat(parameter, name + payload.substr(0, nKept)),
                  static_cast<long>(name.size()));
        EXPECT_EQ(parameter.m_strName, "N");
        parameter.m_strName = "";
        EXPECT_EQ(SaveFlat(parameter).substr(4), before);
    }
    Parameter whole;
    EXPECT_EQ(LoadFlat(whole, name + payload), static_cast<long>(name.size() + payload.size()));
    EXPECT_EQ(SaveFlat(whole), name + payload);
}
} // namespace

TEST(Parameter, TagsAreTheFormats)
{
    EXPECT_EQ(CStringParameter().m_nType, 1);
    EXPECT_EQ(CIntParameter().m_nType, 2);
    EXPECT_EQ(CDoubleParameter().m_nType, 3);
    EXPECT_EQ(CUInt64Parameter().m_nType, 4);
    EXPECT_EQ(CFileIdTypeParameter().m_nType, 5);
    EXPECT_EQ(CParameterBlock().m_nType, 6);
    EXPECT_EQ(CBoolParameter().m_nType, 7);
    EXPECT_EQ(CFloatParameter().m_nType, 8);
    EXPECT_EQ(CSInt64Parameter().m_nType, 9);
}

TEST(Parameter, DefaultsAreEmptyNamesAndZeroes)
{
    EXPECT_TRUE(CStringParameter().m_strValue.empty());
    EXPECT_EQ(CIntParameter().m_nValue, 0);
    EXPECT_EQ(CDoubleParameter().m_dValue, 0.0);
    EXPECT_EQ(CUInt64Parameter().m_nValue, 0u);
    EXPECT_EQ(CFileIdTypeParameter().m_idValue.nFileKey, -1);
    EXPECT_EQ(CFileIdTypeParameter().m_idValue.nFileSub, -1);
    EXPECT_FALSE(CBoolParameter().m_bValue);
    EXPECT_EQ(CFloatParameter().m_fValue, 0.0F);
    EXPECT_EQ(CSInt64Parameter().m_nValue, 0);
    EXPECT_TRUE(CIntParameter().m_strName.empty());
    EXPECT_EQ(CIntParameter().m_nToken, -1);
}

TEST(Parameter, NameAndValueConstructorsKeepBothWithoutAToken)
{
    const CStringParameter string("S", "text");
    EXPECT_EQ(string.m_strName, "S");
    EXPECT_EQ(string.m_strValue, "text");
    EXPECT_EQ(string.m_nToken, -1);
    EXPECT_EQ(CIntParameter("I", -7).m_nValue, -7);
    EXPECT_EQ(CDoubleParameter("D", 2.5).m_dValue, 2.5);
    EXPECT_EQ(CUInt64Parameter("U", ~0ull).m_nValue, ~0ull);
    EXPECT_EQ(CFileIdTypeParameter("F", {3, 4}).m_idValue.nFileKey, 3);
    EXPECT_EQ(CFileIdTypeParameter("F", {3, 4}).m_idValue.nFileSub, 4);
    EXPECT_TRUE(CBoolParameter("B", true).m_bValue);
    EXPECT_EQ(CFloatParameter("f", 0.25F).m_fValue, 0.25F);
    EXPECT_EQ(CSInt64Parameter("L", kLow64).m_nValue, kLow64);
    EXPECT_EQ(CSInt64Parameter("L", kLow64).m_strName, "L");
}

TEST(Parameter, NullNameAndNullStringAreEmpty)
{
    EXPECT_TRUE(CIntParameter(nullptr, 5).m_strName.empty());
    const CStringParameter string("Name", nullptr);
    EXPECT_TRUE(string.m_strValue.empty());
    EXPECT_EQ(SaveFlat(string), Bytes().Counted("Name").U32(0).Get());
}

TEST(Parameter, FlatFormOfStringAtEveryTokenWidth)
{
    ExpectFlat(CStringParameter("Name", "text"), Bytes().Counted("text"));
    ExpectFlat(CStringParameter("Name", ""), Bytes().U32(0));
    const std::string strLong(300, 'x');
    ExpectFlat(CStringParameter("Name", strLong.c_str()), Bytes().Counted(strLong));
}
TEST(Parameter, FlatFormOfIntAtEveryTokenWidth)
{
    ExpectFlat(CIntParameter("Name", -2), Bytes().U32(0xFFFFFFFE));
}
TEST(Parameter, FlatFormOfDoubleAtEveryTokenWidth)
{
    ExpectFlat(CDoubleParameter("Name", -0.1), Bytes().F64(-0.1));
    ExpectFlat(CDoubleParameter("Name", std::numeric_limits<double>::infinity()),
               Bytes().U64(0x7FF0000000000000));
}
TEST(Parameter, FlatFormOfUInt64AtEveryTokenWidth)
{
    ExpectFlat(CUInt64Parameter("Name", 0xFEDCBA9876543210), Bytes().U64(0xFEDCBA9876543210));
}
TEST(Parameter, FlatFormOfBoolAtEveryTokenWidth)
{
    ExpectFlat(CBoolParameter("Name", true), Bytes().U8(1));
    ExpectFlat(CBoolParameter("Name", false), Bytes().U8(0));
}
TEST(Parameter, FlatFormOfFloatAtEveryTokenWidth)
{
    ExpectFlat(CFloatParameter("Name", 1.5F), Bytes().F32(1.5F));
}
TEST(Parameter, FlatFormOfSInt64AtEveryTokenWidth)
{
    ExpectFlat(CSInt64Parameter("Name", kLow64), Bytes().U64(0x8000000000000000));
}
TEST(Parameter, FlatFormOfBlockAtEveryTokenWidth)
{
    CParameterBlock block;
    block.m_strName = "Name";
    block.AddParameter("", 3);
    ExpectFlat(block, Bytes().U32(1).U32(2).U32(0).U32(3));
}

TEST(Parameter, FileIdTakesSixteenBytesAtEveryTokenWidth)
{
    CFileIdTypeParameter parameter("Name", {1, 2});
    EXPECT_EQ(parameter.GetSize(), 8u + 8 + sizeof(long));
    parameter.m_nToken = 254;
    EXPECT_EQ(parameter.GetSize(), 1u + 8 + sizeof(long));
    parameter.m_nToken = 255;
    EXPECT_EQ(parameter.GetSize(), 4u + 8 + sizeof(long));
}

TEST(Parameter, FileIdIsReadKeyFirst)
{
    CFileIdTypeParameter parameter;
    const std::string bytes = Bytes().Counted("Id").U64(0x1122334455667788).U64(~0ull - 4);
    EXPECT_EQ(LoadFlat(parameter, bytes), static_cast<long>(bytes.size()));
    EXPECT_EQ(parameter.m_idValue.nFileKey, 0x1122334455667788);
    EXPECT_EQ(parameter.m_idValue.nFileSub, -5);
}

TEST(Parameter, FileIdCutShortStaysNoFile)
{
    const std::string name = Bytes().Counted("Id");
    const std::string payload = Bytes().U64(1).U64(2);
    for (std::size_t nKept = 0; nKept < payload.size(); ++nKept)
    {
        CFileIdTypeParameter parameter;
        EXPECT_EQ(LoadFlat(parameter, name + payload.substr(0, nKept)), 6);
        EXPECT_EQ(parameter.m_idValue.nFileKey, -1);
        EXPECT_EQ(parameter.m_idValue.nFileSub, -1);
    }
}

TEST(ParameterDeathTest, SavingAFileIdStopsTheProcess)
{
    const CFileIdTypeParameter parameter("Id", {1, 2});
    EXPECT_DEATH(SaveFlat(parameter), "\\(false\\).*Save.*ParameterBlock.*1239");
}

TEST(Parameter, InlineNameOfNoBytesLeavesTheNameAsItWas)
{
    CIntParameter parameter("Old", 1);
    ExactBuffer buffer(Bytes().U32(0));
    EXPECT_EQ(parameter.GetSizeOfName(), 7u);
    EXPECT_EQ(parameter.LoadName(nullptr, 4, buffer.Get()), 4u);
    EXPECT_EQ(parameter.m_strName, "Old");
}

TEST(Parameter, EmptyInlineNameTakesFourBytes)
{
    EXPECT_EQ(CIntParameter().GetSizeOfName(), 4u);
    unsigned char bytes[4] = {1, 1, 1, 1};
    EXPECT_EQ(CIntParameter().SaveName(bytes), 4u);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes), 4), Bytes().U32(0).Get());
}

TEST(Parameter, InlineNameOfLessThanFourBytesConsumesNothing)
{
    for (unsigned nSize = 0; nSize < 4; ++nSize)
    {
        CIntParameter parameter("Old", 1);
        ExactBuffer buffer(std::string(nSize, '\1'));
        EXPECT_EQ(parameter.LoadName(nullptr, nSize, buffer.Get()), 0u);
        EXPECT_EQ(parameter.m_strName, "Old");
    }
}

TEST(Parameter, InlineNameThatOverrunsConsumesItsLengthAlone)
{
    CIntParameter parameter("Old", 1);
    ExactBuffer buffer(Bytes().U32(10).Text("123456789"));
    EXPECT_EQ(parameter.LoadName(nullptr, buffer.Size(), buffer.Get()), 4u);
    EXPECT_EQ(parameter.m_strName, "Old");

    ExactBuffer exact(Bytes().U32(10).Text("1234567890"));
    EXPECT_EQ(parameter.LoadName(nullptr, exact.Size(), exact.Get()), 14u);
    EXPECT_EQ(parameter.m_strName, "1234567890");
}

TEST(Parameter, InlineNameLeavesTheToken)
{
    CIntParameter parameter;
    parameter.m_nToken = 9;
    ExactBuffer buffer(Bytes().Counted("N"));
    EXPECT_EQ(parameter.LoadName(nullptr, buffer.Size(), buffer.Get()), 5u);
    EXPECT_EQ(parameter.m_nToken, 9);
}

TEST(Parameter, TokenNameComesFromTheTableAndTheTokenStays)
{
    std::vector<std::string> names(300);
    names[1] = "one";
    names[254] = "last of one byte";
    names[255] = "first of four";
    const struct
    {
        std::string bytes;
        unsigned nConsumed;
        int nToken;
        const char* pName;
    } cases[] = {
        {Bytes().U8(0), 1, 0, ""},
        {Bytes().U8(1), 1, 1, "one"},
        {Bytes().U8(254), 1, 254, "last of one byte"},
        {Bytes().U8(0xFF).U8(0xFF).U8(0).U8(0), 4, 255, "first of four"},
        // Written in four bytes although one would do.
        {Bytes().U8(0xFF).U8(1).U8(0).U8(0), 4, 1, "one"},
        {Bytes().U8(0xFF).U8(0xFF).U8(0xFF).U8(0xFF), 4, 0xFFFFFF, ""},
        {Bytes().U8(0xFF).U8(44).U8(1).U8(0), 4, 300, ""},
    };
    for (const auto& rule : cases)
    {
        SCOPED_TRACE(rule.nToken);
        CIntParameter parameter("Old", 1);
        ExactBuffer buffer(rule.bytes);
        EXPECT_EQ(parameter.LoadName(&names, buffer.Size(), buffer.Get()), rule.nConsumed);
        EXPECT_EQ(parameter.m_nToken, rule.nToken);
        EXPECT_EQ(parameter.m_strName, rule.pName);
    }
}

TEST(Parameter, TokenNameOfNoBytesChangesNothing)
{
    std::vector<std::string> names{"", "one"};
    CIntParameter parameter("Old", 1);
    parameter.m_nToken = 1;
    ExactBuffer buffer("");
    EXPECT_EQ(parameter.LoadName(&names, 0, buffer.Get()), 0u);
    EXPECT_EQ(parameter.m_strName, "Old");
    EXPECT_EQ(parameter.m_nToken, 1);
}

TEST(Parameter, TokenCutShortLeavesTheOldTokenInForce)
{
    std::vector<std::string> names{"", "one"};
    for (unsigned nSize = 1; nSize < 4; ++nSize)
    {
        ExactBuffer buffer(std::string(nSize, '\xFF'));
        CIntParameter withToken("Old", 1);
        withToken.m_nToken = 1;
        EXPECT_EQ(withToken.LoadName(&names, nSize, buffer.Get()), 0u);
        EXPECT_EQ(withToken.m_nToken, 1);
        EXPECT_EQ(withToken.m_strName, "one");

        CIntParameter withoutToken("Old", 1);
        EXPECT_EQ(withoutToken.LoadName(&names, nSize, buffer.Get()), 0u);
        EXPECT_EQ(withoutToken.m_nToken, -1);
        EXPECT_TRUE(withoutToken.m_strName.empty());
    }
}

TEST(Parameter, EmptyTableMakesEveryNameEmpty)
{
    std::vector<std::string> names;
    CIntParameter parameter("Old", 1);
    ExactBuffer buffer(Bytes().U8(0));
    EXPECT_EQ(parameter.LoadName(&names, 1, buffer.Get()), 1u);
    EXPECT_TRUE(parameter.m_strName.empty());
}

TEST(Parameter, LoadedTokenIsWrittenAgain)
{
    std::vector<std::string> names{"", "one"};
    CIntParameter parameter;
    const std::string bytes = Bytes().U8(1).U32(77);
    EXPECT_EQ(LoadFlat(parameter, bytes, &names), 5);
    EXPECT_EQ(parameter.m_strName, "one");
    EXPECT_EQ(parameter.m_nValue, 77);
    EXPECT_EQ(SaveFlat(parameter), bytes);
}

TEST(Parameter, ShortIntStays)
{
    ExpectShortValueStays<CIntParameter>(Bytes().U32(7));
}
TEST(Parameter, ShortDoubleStays)
{
    ExpectShortValueStays<CDoubleParameter>(Bytes().F64(7));
}
TEST(Parameter, ShortUInt64Stays)
{
    ExpectShortValueStays<CUInt64Parameter>(Bytes().U64(7));
}
TEST(Parameter, ShortSInt64Stays)
{
    ExpectShortValueStays<CSInt64Parameter>(Bytes().U64(7));
}
TEST(Parameter, ShortFloatStays)
{
    ExpectShortValueStays<CFloatParameter>(Bytes().F32(7));
}
TEST(Parameter, ShortBoolStays)
{
    ExpectShortValueStays<CBoolParameter>(Bytes().U8(1));
}

TEST(Parameter, ShortValueKeepsWhatItWas)
{
    CIntParameter parameter("Old", 42);
    EXPECT_EQ(LoadFlat(parameter, Bytes().Counted("New").U8(1).U8(1).U8(1)), 7);
    EXPECT_EQ(parameter.m_strName, "New");
    EXPECT_EQ(parameter.m_nValue, 42);
}

TEST(Parameter, AnyByteButZeroIsTrueAndIsWrittenAsOne)
{
    for (unsigned n : {1u, 2u, 128u, 255u})
    {
        CBoolParameter parameter;
        EXPECT_EQ(LoadFlat(parameter, Bytes().U32(0).U8(n)), 5);
        EXPECT_TRUE(parameter.m_bValue);
        EXPECT_EQ(SaveFlat(parameter), Bytes().U32(0).U8(1).Get());
    }
}

TEST(Parameter, StringIsRead)
{
    CStringParameter parameter("", "old");
    const std::string bytes = Bytes().Counted("N").Counted(std::string_view("a\0b", 3));
    EXPECT_EQ(LoadFlat(parameter, bytes), static_cast<long>(bytes.size()));
    EXPECT_EQ(parameter.m_strValue, std::string("a\0b", 3));
    EXPECT_EQ(SaveFlat(parameter), bytes);
}

TEST(Parameter, StringWithoutALengthIsEmptyAndConsumesItsName)
{
    for (std::size_t nRest = 0; nRest < 4; ++nRest)
    {
        CStringParameter parameter("", "old");
        EXPECT_EQ(LoadFlat(parameter, Bytes().Counted("N").Text(std::string(nRest, '\1'))), 5);
        EXPECT_TRUE(parameter.m_strValue.empty());
    }
}

TEST(Parameter, StringThatOverrunsIsEmptyAndConsumesItsLength)
{
    CStringParameter parameter("", "old");
    EXPECT_EQ(LoadFlat(parameter, Bytes().Counted("N").U32(4).Text("abc")), 9);
    EXPECT_TRUE(parameter.m_strValue.empty());
    EXPECT_EQ(LoadFlat(parameter, Bytes().Counted("N").U32(0xFFFFFFFF).Text("abc")), 9);
    EXPECT_EQ(LoadFlat(parameter, Bytes().Counted("N").U32(0).Text("abc")), 9);
    EXPECT_EQ(LoadFlat(parameter, Bytes().Counted("N").U32(3).Text("abc")), 12);
    EXPECT_EQ(parameter.m_strValue, "abc");
}

TEST(Parameter, AssignmentTakesNameAndValueAndLeavesTheToken)
{
    CIntParameter source("Source", 5);
    source.m_nToken = 3;
    CIntParameter target("Target", 6);
    target.m_nToken = 8;
    CParameter& base = target;
    base = static_cast<CParameter&>(source);
    EXPECT_EQ(target.m_strName, "Source");
    EXPECT_EQ(target.m_nValue, 5);
    EXPECT_EQ(target.m_nToken, 8);

    CIntParameter direct("Direct", 6);
    direct.m_nToken = 2;
    direct = source;
    EXPECT_EQ(direct.m_strName, "Source");
    EXPECT_EQ(direct.m_nValue, 5);
    EXPECT_EQ(direct.m_nToken, 2);
}

TEST(Parameter, AssignmentOfEveryClass)
{
    const auto check = [](auto&& source, auto&& target)
    {
        static_cast<CParameter&>(target) = source;
        EXPECT_EQ(target.m_strName, "S");
        EXPECT_EQ(target.GetSize(), source.GetSize());
    };
    CStringParameter string("S", "longer than fifteen bytes"), string2;
    check(string, string2);
    EXPECT_EQ(string2.m_strValue, "longer than fifteen bytes");
    CDoubleParameter real("S", 1.5), real2;
    check(real, real2);
    EXPECT_EQ(real2.m_dValue, 1.5);
    CUInt64Parameter unsigned64("S", 9ull), unsigned642;
    check(unsigned64, unsigned642);
    EXPECT_EQ(unsigned642.m_nValue, 9u);
    CSInt64Parameter signed64("S", -9ll), signed642;
    check(signed64, signed642);
    EXPECT_EQ(signed642.m_nValue, -9);
    CBoolParameter flag("S", true), flag2;
    check(flag, flag2);
    EXPECT_TRUE(flag2.m_bValue);
    CFloatParameter single("S", 1.5F), single2;
    check(single, single2);
    EXPECT_EQ(single2.m_fValue, 1.5F);
    CFileIdTypeParameter id("S", {1, 2}), id2;
    check(id, id2);
    EXPECT_EQ(id2.m_idValue.nFileKey, 1);
    EXPECT_EQ(id2.m_idValue.nFileSub, 2);
}

TEST(Parameter, AssignmentFromAnotherClassRaisesBadCastAndChangesNothing)
{
    CIntParameter source("Source", 5);
    CStringParameter target("Target", "value");
    EXPECT_THROW(target = static_cast<CParameter&>(source), std::bad_cast);
    EXPECT_EQ(target.m_strName, "Target");
    EXPECT_EQ(target.m_strValue, "value");
    // Of one width, but not of one class.
    CUInt64Parameter unsigned64("U", 1ull);
    CSInt64Parameter signed64("S", 2ll);
    EXPECT_THROW(signed64 = static_cast<CParameter&>(unsigned64), std::bad_cast);
    EXPECT_EQ(signed64.m_nValue, 2);
}

TEST(Parameter, CopyHasNoTokenAndCarriesItsNameInline)
{
    CIntParameter source("Name", 5);
    source.m_nToken = 3;
    const CIntParameter copy(&source);
    EXPECT_EQ(copy.m_nToken, -1);
    EXPECT_EQ(SaveFlat(copy), Bytes().Counted("Name").U32(5).Get());
}

TEST(Parameter, CopyOfEveryClass)
{
    CStringParameter string("S", "text");
    EXPECT_EQ(SaveFlat(CStringParameter(&string)), SaveFlat(string));
    CDoubleParameter real("S", 1.5);
    EXPECT_EQ(SaveFlat(CDoubleParameter(&real)), SaveFlat(real));
    CUInt64Parameter unsigned64("S", 9ull);
    EXPECT_EQ(SaveFlat(CUInt64Parameter(&unsigned64)), SaveFlat(unsigned64));
    CSInt64Parameter signed64("S", -9ll);
    EXPECT_EQ(SaveFlat(CSInt64Parameter(&signed64)), SaveFlat(signed64));
    CBoolParameter flag("S", true);
    EXPECT_EQ(SaveFlat(CBoolParameter(&flag)), SaveFlat(flag));
    CFloatParameter single("S", 1.5F);
    EXPECT_EQ(SaveFlat(CFloatParameter(&single)), SaveFlat(single));
    CFileIdTypeParameter id("S", {1, 2});
    EXPECT_EQ(CFileIdTypeParameter(&id).m_idValue.nFileSub, 2);
    EXPECT_EQ(CFileIdTypeParameter(&id).m_strName, "S");
}

TEST(Parameter, CopyOfNoneOrOfAnotherClassIsEmpty)
{
    CStringParameter other("Name", "text");
    for (CParameter* pSource :
         {static_cast<CParameter*>(nullptr), static_cast<CParameter*>(&other)})
    {
        const CIntParameter copy(pSource);
        EXPECT_TRUE(copy.m_strName.empty());
        EXPECT_EQ(copy.m_nValue, 0);
    }
}

TEST(Parameter, NamesAreCountedEmptyOnesNot)
{
    std::map<std::string, int> map;
    CIntParameter("A", 1).AddNameToMap(map);
    CIntParameter("A", 2).AddNameToMap(map);
    CBoolParameter("B", true).AddNameToMap(map);
    CIntParameter("", 3).AddNameToMap(map);
    EXPECT_EQ(map, (std::map<std::string, int>{{"A", 2}, {"B", 1}}));
}

TEST(Parameter, TokenComesFromTheMap)
{
    std::map<std::string, int> map{{"A", 5}, {"", 9}};
    CIntParameter known("A", 1), unknown("B", 1), unnamed("", 1);
    known.UpdateTokenFromMap(map);
    unknown.UpdateTokenFromMap(map);
    unnamed.UpdateTokenFromMap(map);
    EXPECT_EQ(known.m_nToken, 5);
    EXPECT_EQ(unknown.m_nToken, 0);
    EXPECT_EQ(unnamed.m_nToken, 0);
    EXPECT_EQ(map.size(), 2u);
}

TEST(Parameter, ValuesAreStoredUnaligned)
{
    for (std::size_t nShift = 0; nShift < 8; ++nShift)
    {
        const CDoubleParameter source("N", 12.25);
        std::string bytes(nShift + source.GetSize(), '\0');
        auto* pPlace = reinterpret_cast<unsigned char*>(bytes.data()) + nShift;
        source.Save(0, pPlace);
        CDoubleParameter target;
        EXPECT_EQ(target.Load(nullptr, source.GetSize(), pPlace), 13);
        EXPECT_EQ(target.m_dValue, 12.25);
    }
}

TEST(Parameter, NameIsReadFromTheLow32BitsOfTheSizeAndTheValueFromTheWhole)
{
    // Two bytes, as far as the low 32 bits go: no name, and the value stands where it would.
    ExactBuffer buffer(Bytes().U32(7));
    CIntParameter parameter("Old", 1);
    EXPECT_EQ(parameter.Load(nullptr, 0x100000002ul, buffer.Get()), 4);
    EXPECT_EQ(parameter.m_strName, "Old");
    EXPECT_EQ(parameter.m_nValue, 7);

    ExactBuffer text(Bytes().U32(3).Text("abc"));
    CStringParameter string("Old", "");
    EXPECT_EQ(string.Load(nullptr, 0x100000002ul, text.Get()), 7);
    EXPECT_EQ(string.m_strValue, "abc");
}

TEST(Parameter, FieldsStandInTheirOrder)
{
    const auto at = [](const auto& parameter, const auto& field)
    { return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&parameter); };
    const CIntParameter parameter;
    static_assert(std::is_same_v<decltype(CParameter::m_nType), const int>);
    static_assert(std::is_same_v<decltype(CParameter::m_nToken), int>);
    constexpr std::ptrdiff_t nTable = sizeof(void*);
    EXPECT_EQ(at(parameter, parameter.m_nType), nTable);
    EXPECT_EQ(at(parameter, parameter.m_nToken), nTable + 4);
    EXPECT_EQ(at(parameter, parameter.m_strName), nTable + 8);
    constexpr std::ptrdiff_t nValue = nTable + 8 + sizeof(CByteString);
    EXPECT_EQ(sizeof(CParameter), static_cast<std::size_t>(nValue));
    EXPECT_EQ(at(parameter, parameter.m_nValue), nValue);
    const CStringParameter string;
    EXPECT_EQ(at(string, string.m_strValue), nValue);
    const CParameterBlock block;
    EXPECT_EQ(at(block, block.m_vParameters), nValue);
    const auto nBehindList = nValue + static_cast<std::ptrdiff_t>(sizeof(CParameterList));
    EXPECT_EQ(at(block, block.m_pProgress), nBehindList);
    EXPECT_EQ(at(block, block.m_nProgressTotal), nBehindList + nTable);
    EXPECT_EQ(sizeof(block), static_cast<std::size_t>(nBehindList + 2 * nTable));
}

TEST(Parameter, VirtualOperationsStandInTheirOrder)
{
    // The table of virtual functions has two destructors, the second of which deletes.
    using Size = unsigned long(const CParameter*);
    using Save = unsigned long(const CParameter*, unsigned long, unsigned char*);
    using Load = long(CParameter*, std::vector<std::string>*, unsigned long, unsigned char*);
    using Assign = CParameter&(CParameter*, CParameter*);
    using Destroy = void(CParameter*);
    const auto check = [](CParameter* pParameter, CParameter* pOther)
    {
        void** const table = *reinterpret_cast<void***>(pParameter);
        const std::string flat = SaveFlat(*pParameter);
        EXPECT_EQ(reinterpret_cast<Size*>(table[2])(pParameter), flat.size());
        std::string bytes(flat.size(), '\0');
        auto* pBytes = reinterpret_cast<unsigned char*>(bytes.data());
        EXPECT_EQ(reinterpret_cast<Save*>(table[3])(pParameter, 0, pBytes), flat.size());
        EXPECT_EQ(bytes, flat);
        EXPECT_EQ(reinterpret_cast<Load*>(table[4])(pOther, nullptr, flat.size(), pBytes),
                  static_cast<long>(flat.size()));
        EXPECT_EQ(SaveFlat(*pOther), flat);
        pParameter->m_strName = "Other";
        EXPECT_EQ(&reinterpret_cast<Assign*>(table[5])(pOther, pParameter), pOther);
        EXPECT_EQ(pOther->m_strName, "Other");
        reinterpret_cast<Destroy*>(table[1])(pOther);
        delete pParameter;
    };
    check(new CIntParameter("Name", 5), new CIntParameter);
    auto* pBlock = new CParameterBlock;
    pBlock->m_strName = "Name";
    pBlock->AddParameter("V", 1);
    check(pBlock, new CParameterBlock);
}
