#include "apps/session/Json.h"

#include "apps/support/program/CommandLine.h"
#include "tests/utils/ParameterHelpers.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <cmath>
#include <limits>
#include <sstream>

using namespace Tarvane::Session;

namespace
{

std::string ToJson(const CParameterBlock& root)
{
    std::ostringstream text;
    WriteJson(root, text);
    return text.str();
}

void ExpectSameBothWays(CParameterBlock& root)
{
    const std::string text = ToJson(root);
    EXPECT_TRUE(nlohmann::json::accept(text)) << text;
    CParameterBlock read;
    ReadJson(text, read);
    EXPECT_EQ(SaveFlat(read), SaveFlat(root)) << text;
    EXPECT_EQ(ToJson(read), text);
}

std::string Root(const std::string& strEntries)
{
    return R"({"format": "tarvane-session", "name": "", "parameters": [)" + strEntries + "]}";
}

void AddText(CParameterBlock& root, const std::string& strName, const std::string& strValue)
{
    root.AddParameter("", "");
    auto& added = At<CStringParameter>(root, root.m_vParameters.size() - 1);
    added.m_strName = strName;
    added.m_strValue = strValue;
}

} // namespace

TEST(SessionJson, TextOfEveryKind)
{
    CParameterBlock root;
    root.m_strName = "The \"root\"";
    std::string strAll;
    for (int i = 0; i < 256; ++i)
        strAll += static_cast<char>(i);
    for (const std::string& text :
         {std::string(), std::string("plain"), strAll, std::string("zero\0inside", 11),
          std::string("\xC3\xA4\xF0\x9F\x8E\xB5"), std::string("\xED\xA0\x80"),
          std::string("\x1B\x7F\"\\/")})
    {
        AddText(root, "Text", text);
        AddText(root, text.substr(0, text.find('\0')), "by name");
    }
    ExpectSameBothWays(root);
}

TEST(SessionJson, NumbersOfEveryType)
{
    CParameterBlock root;
    for (const int n : {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        root.AddParameter("Int", n);
    for (const long long n :
         {0ll, -1ll, std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max()})
        root.AddParameter("Int64", n);
    for (const unsigned long long n : {0ull, ~0ull, 1ull << 53 | 1})
        root.AddParameter("UInt64", n);
    using Double = std::numeric_limits<double>;
    for (const double d : {0.0, -0.0, 0.1, 1.0, 1e300, -1e-300, Double::denorm_min(), Double::max(),
                           Double::infinity(), -Double::infinity(), Double::quiet_NaN(),
                           std::bit_cast<double>(0x7FF0000000000001),
                           std::bit_cast<double>(0xFFF8123456789ABC), 123456789012345678.0})
        root.AddParameter("Double", d);
    using Float = std::numeric_limits<float>;
    for (const float f : {0.0F, -0.0F, 0.1F, 1.0F, 16777217.0F, Float::denorm_min(), Float::max(),
                          Float::infinity(), -Float::infinity(), Float::quiet_NaN(),
                          std::bit_cast<float>(0x7FC00001), std::bit_cast<float>(0xFFC00000)})
        root.AddParameter("Float", f);
    root.AddParameter("Bool", true);
    root.AddParameter("Bool", false);
    ExpectSameBothWays(root);
}

TEST(SessionJson, AnyFloatReadsBack)
{
    CParameterBlock root;
    for (std::uint32_t nBits = 1; nBits < 0x7F800000; nBits += 104729 * 31)
        root.AddParameter("F", std::bit_cast<float>(nBits));
    for (std::uint64_t nBits = 1; nBits < 0x7FF0000000000000; nBits += 0x3FF1234567891)
        root.AddParameter("D", std::bit_cast<double>(nBits));
    ExpectSameBothWays(root);
}

TEST(SessionJson, NestedDuplicateAndUnnamed)
{
    CParameterBlock inner, nested, root;
    inner.AddParameter("", 1);
    nested.AddParameter("X", &inner);
    nested.AddParameter("X", &inner);
    nested.AddParameter("X", 2);
    root.AddParameter("", &nested);
    root.AddParameter("Empty", &root);
    ExpectSameBothWays(root);
}

TEST(SessionJson, FileIdsCanBeReadBothWays)
{
    CParameterBlock root, read;
    root.AddParameter("Id", TGL::FileIdType{std::numeric_limits<std::int64_t>::min(), -1});
    const std::string text = ToJson(root);
    ReadJson(text, read);
    EXPECT_EQ(At<CFileIdTypeParameter>(read, 0).m_idValue.nFileKey,
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(At<CFileIdTypeParameter>(read, 0).m_idValue.nFileSub, -1);
    EXPECT_EQ(ToJson(read), text);
}

TEST(SessionJson, FormIsAsDescribed)
{
    CParameterBlock nested, root;
    nested.AddParameter("Gain", 0.5F);
    root.AddParameter("B", &nested);
    root.AddParameter("Wide", -5ll);
    const auto json = nlohmann::json::parse(ToJson(root));
    EXPECT_EQ(json["format"], "tarvane-session");
    EXPECT_EQ(json["parameters"][0]["type"], "block");
    EXPECT_EQ(json["parameters"][0]["parameters"][0]["value"], 0.5);
    EXPECT_EQ(json["parameters"][1],
              nlohmann::json({{"name", "Wide"}, {"type", "int64"}, {"value", "-5"}}));
}

TEST(SessionJson, KeysComeInAnyOrderAndWideNumbersAlsoPlain)
{
    CParameterBlock root;
    ReadJson(R"({"parameters": [{"value": 18446744073709551615, "type": "uint64", "name": "U"},
                 {"value": 3, "name": "D", "type": "double"},
                 {"parameters": [], "name": "B", "type": "block"}],
                 "name": "R", "format": "tarvane-session"})",
             root);
    EXPECT_EQ(root.m_strName, "R");
    EXPECT_EQ(At<CUInt64Parameter>(root, 0).m_nValue, ~0ull);
    EXPECT_EQ(At<CDoubleParameter>(root, 1).m_dValue, 3.0);
    EXPECT_EQ(At<CParameterBlock>(root, 2).m_strName, "B");
}

TEST(SessionJson, RefusesWhatIsNotItsForm)
{
    for (const std::string& text : {
             std::string(""),
             std::string("{"),
             std::string("[]"),
             std::string("1"),
             std::string("null"),
             std::string("{}"),
             std::string(R"({"parameters": []})"),
             std::string(R"({"format": "other", "name": "", "parameters": []})"),
             std::string(R"({"format": "tarvane-session", "name": ""})"),
             std::string(R"({"format": "tarvane-session", "parameters": []})"),
             Root("1"),
             Root("null"),
             Root("[]"),
             Root("{}"),
             Root(R"({"name": "A"})"),
             Root(R"({"name": "A", "type": "int"})"),
             Root(R"({"type": "int", "value": 1})"),
             Root(R"({"name": "A", "type": "other", "value": 1})"),
             Root(R"({"name": "A", "type": "int", "value": 2147483648})"),
             Root(R"({"name": "A", "type": "int", "value": 1.5})"),
             Root(R"({"name": "A", "type": "int", "value": "1"})"),
             Root(R"({"name": "A", "type": "int", "value": null})"),
             Root(R"({"name": "A", "type": "bool", "value": 1})"),
             Root(R"({"name": "A", "type": "string", "value": 1})"),
             Root(R"({"name": "A", "type": "string", "value": {"hex": "1"}})"),
             Root(R"({"name": "A", "type": "string", "value": {"hex": "xx"}})"),
             Root(R"({"name": "A", "type": "string", "value": {"hex": 1}})"),
             Root(R"({"name": "A", "type": "uint64", "value": "-1"})"),
             Root(R"({"name": "A", "type": "uint64", "value": ""})"),
             Root(R"({"name": "A", "type": "int64", "value": "9223372036854775808"})"),
             Root(R"({"name": "A", "type": "double", "value": "1"})"),
             Root(R"({"name": "A", "type": "double", "value": "nan:1"})"),
             Root(R"({"name": "A", "type": "double", "value": 1e999})"),
             Root(R"({"name": "A", "type": "block"})"),
             Root(R"({"name": "A", "type": "block", "parameters": 1})"),
             Root(R"({"name": "A", "type": "block", "parameters": [], "parameters": []})"),
             Root(R"({"name": "A", "type": "int", "value": 1, "parameters": []})"),
             Root(R"({"name": "A", "type": "fileid", "value": {"key": "1"}})"),
             Root(R"({"name": "A", "type": "fileid", "value": 1})"),
             Root(R"({"name": "A", "type": "int", "value": 1, "more": 1})"),
             Root(R"({"name": "A", "type": {"hex": "41"}, "value": 1})"),
             Root(R"({"name": {"key": "41"}, "type": "int", "value": 1})"),
             Root(R"({"name": "A\u0000B", "type": "int", "value": 1})"),
             Root(R"({"name": "A", "type": "int", "value": 1, "format": "tarvane-session"})"),
             Root("") + "x",
         })
    {
        CParameterBlock root;
        EXPECT_THROW(ReadJson(text, root), Tarvane::CUsageError) << text;
        EXPECT_TRUE(root.m_vParameters.empty());
    }
}

TEST(SessionJson, MessageSaysWhere)
{
    CParameterBlock root;
    try
    {
        ReadJson(Root(R"({"name": "A", "type": "block", "parameters":
                         [{"name": "B", "type": "int", "value": 1.5}]})"),
                 root);
        FAIL();
    }
    catch (const Tarvane::CUsageError& error)
    {
        EXPECT_STREQ(error.what(), "\"1.5\" is no int. Found in /A/B");
    }
}

TEST(SessionJson, DepthCostsNoCallStack)
{
    constexpr int kDepth = 100000;
    Bytes bytes;
    bytes.U32(1);
    for (int i = 0; i < kDepth; ++i)
        bytes.U32(6).Counted("B").U32(i == kDepth - 1 ? 0 : 1);
    CParameterBlock root, read;
    ASSERT_GT(LoadBlock(root, bytes), 0);
    ReadJson(ToJson(root), read);
    EXPECT_TRUE(CreateBlock(read) == bytes.Get());
}
