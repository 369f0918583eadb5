// What a caller does with a std::string he does with the names and values of parameters: one
// snippet an operation. That they compile is half of what is tested.
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <iterator>
#include <map>
#include <numeric>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{
// Each snippet runs on a text that lies in the object and on one that does not.
class TextOfAParameter : public testing::TestWithParam<const char*>
{
protected:
    CStringParameter m_parameter{GetParam(), GetParam()};
    std::string m_text = GetParam();
    // The name of another parameter.
    CIntParameter m_other{"other", 1};

    // The same change, to the name, to the value and to a std::string.
    template <class F> void ExpectSame(F&& change)
    {
        change(m_parameter.m_strName);
        change(m_parameter.m_strValue);
        change(m_text);
        EXPECT_EQ(m_parameter.m_strName, m_text);
        EXPECT_EQ(m_parameter.m_strValue, m_text);
        EXPECT_EQ(m_parameter.m_strName.length(), m_text.length());
    }
    // The same question, of all three.
    template <class F> void ExpectSameAnswer(F&& ask)
    {
        const auto answer = ask(std::as_const(m_text));
        EXPECT_EQ(ask(std::as_const(m_parameter.m_strName)), answer);
        EXPECT_EQ(ask(m_parameter.m_strName), answer);
        EXPECT_EQ(ask(m_parameter.m_strValue), answer);
    }
};

std::string TakesValue(std::string text)
{
    return text + "!";
}
std::string TakesConstReference(const std::string& text)
{
    return text + "!";
}
std::string TakesView(std::string_view text)
{
    return std::string(text) + "!";
}
} // namespace

INSTANTIATE_TEST_SUITE_P(InsideAndOutside, TextOfAParameter,
                         testing::Values("abcabc", "abcabc and more than fifteen bytes"));

TEST_P(TextOfAParameter, InitialisesAString)
{
    const std::string copied = m_parameter.m_strName;
    const std::string direct(m_parameter.m_strName);
    const std::string braced{m_parameter.m_strName};
    EXPECT_EQ(copied, m_text);
    EXPECT_EQ(direct, m_text);
    EXPECT_EQ(braced, m_text);
}

TEST_P(TextOfAParameter, IsAssignedToAString)
{
    std::string text;
    text = m_parameter.m_strName;
    EXPECT_EQ(text, m_text);
    text.assign(m_parameter.m_strValue);
    EXPECT_EQ(text, m_text);
}

TEST_P(TextOfAParameter, IsPassedAsAString)
{
    EXPECT_EQ(TakesValue(m_parameter.m_strName), m_text + "!");
    EXPECT_EQ(TakesConstReference(m_parameter.m_strName), m_text + "!");
    EXPECT_EQ(TakesView(m_parameter.m_strName), m_text + "!");
}

TEST_P(TextOfAParameter, InitialisesAView)
{
    const std::string_view view = m_parameter.m_strName;
    EXPECT_EQ(view, m_text);
}

TEST_P(TextOfAParameter, IsAssignedFromTexts)
{
    ExpectSame([](auto& text) { text = "literal"; });
    ExpectSame([](auto& text) { text = std::string("a string"); });
    ExpectSame([](auto& text) { text = std::string_view("a view"); });
    ExpectSame([](auto& text) { text = 'c'; });
    ExpectSame([](auto& text) { text = {'l', 'i', 's', 't'}; });
    const std::string named = "named";
    ExpectSame([&](auto& text) { text = named; });
    m_parameter.m_strName = m_other.m_strName;
    EXPECT_EQ(m_parameter.m_strName, "other");
}

TEST_P(TextOfAParameter, AssignHasEveryForm)
{
    ExpectSame([](auto& text) { text.assign("literal"); });
    ExpectSame([](auto& text) { text.assign("literal", 3); });
    ExpectSame([](auto& text) { text.assign(5, 'x'); });
    ExpectSame([](auto& text) { text.assign(std::string("a string")); });
    ExpectSame([](auto& text) { text.assign(std::string("a string"), 2, 3); });
    ExpectSame([](auto& text) { text.assign(std::string_view("a view")); });
    ExpectSame([](auto& text) { text.assign({'a', 'b'}); });
    const std::vector<char> chars{'v', 'w'};
    ExpectSame([&](auto& text) { text.assign(chars.begin(), chars.end()); });
    m_parameter.m_strName.assign(m_other.m_strName);
    EXPECT_EQ(m_parameter.m_strName, "other");
}

TEST_P(TextOfAParameter, ComparesForEquality)
{
    const std::string same = m_text;
    EXPECT_TRUE(m_parameter.m_strName == same);
    EXPECT_TRUE(same == m_parameter.m_strName);
    EXPECT_TRUE(m_parameter.m_strName == same.c_str());
    EXPECT_TRUE(same.c_str() == m_parameter.m_strName);
    EXPECT_TRUE(m_parameter.m_strName == std::string_view(same));
    EXPECT_TRUE(std::string_view(same) == m_parameter.m_strName);
    EXPECT_TRUE(m_parameter.m_strName == m_parameter.m_strValue);
    EXPECT_TRUE(m_parameter.m_strName != "other");
    EXPECT_TRUE("other" != m_parameter.m_strName);
    EXPECT_TRUE(m_parameter.m_strName != m_other.m_strName);
    EXPECT_FALSE(m_parameter.m_strName == "");
}

TEST_P(TextOfAParameter, ComparesForOrder)
{
    EXPECT_TRUE(m_parameter.m_strName < "b");
    EXPECT_TRUE(m_parameter.m_strName < std::string("b"));
    EXPECT_TRUE(m_parameter.m_strName < std::string_view("b"));
    EXPECT_TRUE(m_parameter.m_strName < m_other.m_strName);
    EXPECT_TRUE("b" > m_parameter.m_strName);
    EXPECT_TRUE(std::string("b") >= m_parameter.m_strName);
    EXPECT_TRUE(m_parameter.m_strName <= m_text);
    EXPECT_TRUE(m_parameter.m_strName > "abc");
    EXPECT_TRUE((m_parameter.m_strName <=> m_other.m_strName) < 0);
    EXPECT_TRUE(m_parameter.m_strName < "\xFF") << "bytes are compared as unsigned";
}

TEST_P(TextOfAParameter, IsJoined)
{
    const std::string text = "+";
    EXPECT_EQ(m_parameter.m_strName + "+", m_text + "+");
    EXPECT_EQ("+" + m_parameter.m_strName, "+" + m_text);
    EXPECT_EQ(m_parameter.m_strName + text, m_text + "+");
    EXPECT_EQ(text + m_parameter.m_strName, "+" + m_text);
    EXPECT_EQ(std::string("+") + m_parameter.m_strName + std::string("+"), "+" + m_text + "+");
    EXPECT_EQ(m_parameter.m_strName + '+', m_text + "+");
    EXPECT_EQ('+' + m_parameter.m_strName, "+" + m_text);
    EXPECT_EQ(m_parameter.m_strName + m_parameter.m_strValue, m_text + m_text);
    std::string sum;
    sum += m_parameter.m_strName;
    EXPECT_EQ(sum, m_text);
}

TEST_P(TextOfAParameter, IsExtended)
{
    ExpectSame([](auto& text) { text += "literal"; });
    ExpectSame([](auto& text) { text += std::string("string"); });
    ExpectSame([](auto& text) { text += std::string_view("view"); });
    ExpectSame([](auto& text) { text += 'c'; });
    ExpectSame([](auto& text) { text += text; });
    ExpectSame([](auto& text) { text.push_back('p'); });
    ExpectSame([](auto& text) { (text += "chain") += "ed"; });
    ExpectSame([](auto& text) { std::fill_n(std::back_inserter(text), 3, 'b'); });
    m_parameter.m_strName += m_other.m_strName;
    EXPECT_TRUE(m_parameter.m_strName.ends_with("other"));
}

TEST_P(TextOfAParameter, AppendHasEveryForm)
{
    ExpectSame([](auto& text) { text.append("literal"); });
    ExpectSame([](auto& text) { text.append("literal", 3); });
    ExpectSame([](auto& text) { text.append(2, 'x'); });
    ExpectSame([](auto& text) { text.append(std::string("string")); });
    ExpectSame([](auto& text) { text.append(std::string("string"), 1, 2); });
    ExpectSame([](auto& text) { text.append({'a', 'b'}); });
    ExpectSame([](auto& text) { text.append(text); });
    const std::string other = "range";
    ExpectSame([&](auto& text) { text.append(other.begin(), other.end()).append("!"); });
    m_parameter.m_strName.append(m_other.m_strName);
    EXPECT_TRUE(m_parameter.m_strName.ends_with("other"));
}

TEST_P(TextOfAParameter, InsertHasEveryForm)
{
    ExpectSame([](auto& text) { text.insert(0, "front"); });
    ExpectSame([](auto& text) { text.insert(2, std::string("string")); });
    ExpectSame([](auto& text) { text.insert(2, "literal", 3); });
    ExpectSame([](auto& text) { text.insert(text.size(), 3, 'x'); });
    ExpectSame([](auto& text) { text.insert(text.begin(), 'c'); });
    ExpectSame([](auto& text) { *text.insert(text.end(), 'e') = 'f'; });
    ExpectSame([](auto& text) { text.insert(text.begin() + 1, 2, 'y'); });
    const std::string other = "range";
    ExpectSame([&](auto& text) { text.insert(text.begin() + 1, other.begin(), other.end()); });
    EXPECT_THROW(m_parameter.m_strName.insert(1000, "far"), std::out_of_range);
}

TEST_P(TextOfAParameter, EraseHasEveryForm)
{
    ExpectSame([](auto& text) { text.erase(0, 1); });
    ExpectSame([](auto& text) { text.erase(text.begin()); });
    ExpectSame([](auto& text) { text.erase(text.begin() + 1, text.begin() + 2); });
    ExpectSame([](auto& text) { *text.erase(text.begin()) = 'Z'; });
    ExpectSame([](auto& text) { text.erase(1); });
    ExpectSame([](auto& text) { text.erase(); });
    EXPECT_THROW(m_parameter.m_strName.erase(1000), std::out_of_range);
}

TEST_P(TextOfAParameter, IsErasedByTheIdiomOfRemove)
{
    ExpectSame([](auto& text)
               { text.erase(std::remove(text.begin(), text.end(), 'b'), text.end()); });
}

TEST_P(TextOfAParameter, ReplaceHasEveryForm)
{
    ExpectSame([](auto& text) { text.replace(0, 2, "literal"); });
    ExpectSame([](auto& text) { text.replace(1, 2, std::string("string")); });
    ExpectSame([](auto& text) { text.replace(1, 2, 3, 'x'); });
    ExpectSame([](auto& text) { text.replace(text.begin(), text.begin() + 2, "it"); });
    ExpectSame([](auto& text) { text.replace(text.find("b"), 1, ""); });
}

TEST_P(TextOfAParameter, IsResizedAndCleared)
{
    ExpectSame([](auto& text) { text.resize(50); });
    ExpectSame([](auto& text) { text.resize(60, 'x'); });
    ExpectSame([](auto& text) { text.resize(2); });
    ExpectSame([](auto& text) { text.pop_back(); });
    ExpectSame([](auto& text) { text.clear(); });
    EXPECT_TRUE(m_parameter.m_strName.empty());
}

TEST_P(TextOfAParameter, MakesRoomAsAsked)
{
    m_parameter.m_strName.reserve(100);
    m_parameter.m_strName.shrink_to_fit();
    EXPECT_GE(m_parameter.m_strName.capacity(), m_text.size());
    EXPECT_GE(m_parameter.m_strName.max_size(), m_text.size());
    EXPECT_EQ(m_parameter.m_strName, m_text);
}

TEST_P(TextOfAParameter, IsSwapped)
{
    m_parameter.m_strName.swap(m_other.m_strName);
    EXPECT_EQ(m_other.m_strName, m_text);
    std::swap(m_parameter.m_strName, m_other.m_strName);
    EXPECT_EQ(m_parameter.m_strName, m_text);
    using std::swap;
    swap(m_parameter.m_strName, m_other.m_strName);
    EXPECT_EQ(m_parameter.m_strName, "other");
    std::string text = "text";
    m_parameter.m_strName.swap(text);
    EXPECT_EQ(text, "other");
    EXPECT_EQ(m_parameter.m_strName, "text");
}

TEST_P(TextOfAParameter, IsIndexed)
{
    ExpectSameAnswer([](auto& text) { return text[1]; });
    ExpectSameAnswer([](auto& text) { return text.at(1); });
    ExpectSameAnswer([](auto& text) { return text.front(); });
    ExpectSameAnswer([](auto& text) { return text.back(); });
    ExpectSameAnswer([](auto& text) { return text[text.size()]; });
    ExpectSame([](auto& text) { text[0] = 'X'; });
    ExpectSame([](auto& text) { text.at(1) = 'Y'; });
    ExpectSame([](auto& text) { text.front() = 'F'; });
    ExpectSame([](auto& text) { text.back() = 'B'; });
    ExpectSame([](auto& text) { text.data()[2] = 'D'; });
    EXPECT_THROW(m_parameter.m_strName.at(1000), std::out_of_range);
}

TEST_P(TextOfAParameter, IsWrittenThroughWhileItsCopiesStay)
{
    const CStringParameter copy(&m_parameter);
    m_parameter.m_strName[0] = 'X';
    EXPECT_EQ(copy.m_strName, m_text);
    EXPECT_EQ(m_parameter.m_strName, "X" + m_text.substr(1));
}

TEST_P(TextOfAParameter, IsWalkedByARange)
{
    std::string seen;
    for (const char c : m_parameter.m_strName)
        seen += c;
    EXPECT_EQ(seen, m_text);
    ExpectSame(
        [](auto& text)
        {
            for (char& c : text)
                c = static_cast<char>(std::toupper(c));
        });
    ExpectSame(
        [](auto& text)
        {
            for (auto it = text.begin(); it != text.end(); ++it)
                *it = static_cast<char>(*it + 1);
        });
}

TEST_P(TextOfAParameter, IsWalkedBackwards)
{
    const auto& text = m_parameter.m_strName;
    EXPECT_EQ(std::string(text.rbegin(), text.rend()), std::string(m_text.rbegin(), m_text.rend()));
    EXPECT_EQ(std::string(text.crbegin(), text.crend()),
              std::string(m_text.crbegin(), m_text.crend()));
    EXPECT_EQ(std::string(text.cbegin(), text.cend()), m_text);
    ExpectSame([](auto& any) { *any.rbegin() = 'R'; });
}

TEST_P(TextOfAParameter, IsWorkedOnByAlgorithms)
{
    ExpectSame([](auto& text) { std::sort(text.begin(), text.end()); });
    ExpectSame([](auto& text) { std::reverse(text.begin(), text.end()); });
    ExpectSame([](auto& text)
               { std::transform(text.begin(), text.end(), text.begin(), ::toupper); });
    ExpectSameAnswer([](auto& text) { return std::count(text.begin(), text.end(), 'A'); });
    ExpectSameAnswer([](auto& text) { return std::accumulate(text.begin(), text.end(), 0); });
    ExpectSameAnswer([](auto& text) { return std::ranges::count(text, 'B'); });
}

TEST_P(TextOfAParameter, FindHasEveryForm)
{
    ExpectSameAnswer([](auto& text) { return text.find("bc"); });
    ExpectSameAnswer([](auto& text) { return text.find("bc", 2); });
    ExpectSameAnswer([](auto& text) { return text.find("bcX", 0, 2); });
    ExpectSameAnswer([](auto& text) { return text.find('c'); });
    ExpectSameAnswer([](auto& text) { return text.find('c', 3); });
    ExpectSameAnswer([](auto& text) { return text.find(std::string("ca")); });
    ExpectSameAnswer([](auto& text) { return text.find("nowhere") == std::string::npos; });
    ExpectSameAnswer([](auto& text) { return text.rfind("ab"); });
    ExpectSameAnswer([](auto& text) { return text.rfind('a'); });
    ExpectSameAnswer([](auto& text) { return text.find_first_of("cb"); });
    ExpectSameAnswer([](auto& text) { return text.find_last_of("cb"); });
    ExpectSameAnswer([](auto& text) { return text.find_first_not_of("ab"); });
    ExpectSameAnswer([](auto& text) { return text.find_last_not_of("bc"); });
    EXPECT_EQ(m_parameter.m_strName.find(m_other.m_strName), CByteString::npos);
    EXPECT_EQ(m_text.find(m_parameter.m_strName), 0u);
}

TEST_P(TextOfAParameter, SubstrCompareAndTheirLike)
{
    ExpectSameAnswer([](auto& text) { return text.substr(); });
    ExpectSameAnswer([](auto& text) { return text.substr(2); });
    ExpectSameAnswer([](auto& text) { return text.substr(1, 2); });
    ExpectSameAnswer([](auto& text) { return text.compare("abc") > 0; });
    ExpectSameAnswer([](auto& text) { return text.compare(0, 3, "abc"); });
    ExpectSameAnswer([](auto& text) { return text.compare(std::string("b")) < 0; });
    ExpectSameAnswer([](auto& text) { return text.starts_with("abc"); });
    ExpectSameAnswer([](auto& text) { return text.starts_with('a'); });
    ExpectSameAnswer([](auto& text) { return text.ends_with("bytes"); });
    EXPECT_EQ(m_parameter.m_strName.compare(m_parameter.m_strValue), 0);
    EXPECT_THROW(m_parameter.m_strName.substr(1000), std::out_of_range);
    char chars[3] = {};
    EXPECT_EQ(m_parameter.m_strName.copy(chars, 2, 1), 2u);
    EXPECT_STREQ(chars, "bc");
}

TEST_P(TextOfAParameter, IsAskedForItsLength)
{
    ExpectSameAnswer([](auto& text) { return text.length(); });
    ExpectSameAnswer([](auto& text) { return text.size(); });
    ExpectSameAnswer([](auto& text) { return std::size(text); });
    ExpectSameAnswer([](auto& text) { return text.empty(); });
    ExpectSameAnswer([](auto& text) { return std::string(text.c_str()); });
    ExpectSameAnswer([](auto& text) { return std::string(text.data()); });
}

TEST_P(TextOfAParameter, IsWrittenToAndReadFromStreams)
{
    std::ostringstream out;
    out << m_parameter.m_strName << ' ' << std::as_const(m_parameter).m_strValue;
    EXPECT_EQ(out.str(), m_text + " " + m_text);
    std::istringstream in("one two");
    in >> m_parameter.m_strName >> m_parameter.m_strValue;
    EXPECT_EQ(m_parameter.m_strName, "one");
    EXPECT_EQ(m_parameter.m_strValue, "two");
}

TEST_P(TextOfAParameter, IsHashed)
{
    const std::hash<CByteString> hash;
    EXPECT_EQ(hash(m_parameter.m_strName), hash(m_parameter.m_strValue));
    EXPECT_NE(hash(m_parameter.m_strName), hash(m_other.m_strName));
    EXPECT_EQ(std::hash<std::string>()(m_parameter.m_strName), std::hash<std::string>()(m_text));
}

TEST_P(TextOfAParameter, IsAKeyOfMapsOfStrings)
{
    std::map<std::string, int> map;
    map[m_parameter.m_strName] = 5;
    ++map[m_parameter.m_strValue];
    EXPECT_EQ(map.at(m_text), 6);
    EXPECT_EQ(map.count(m_parameter.m_strName), 1u);
    EXPECT_EQ(map.find(m_other.m_strName), map.end());
    map.emplace(m_other.m_strName, 7);
    EXPECT_EQ(map["other"], 7);
    std::unordered_map<std::string, int> hashed;
    hashed[m_parameter.m_strName] = 5;
    EXPECT_EQ(hashed[m_text], 5);
    std::set<std::string> set;
    set.insert(m_parameter.m_strName);
    EXPECT_TRUE(set.contains(m_text));
    std::vector<std::string> texts{m_parameter.m_strName};
    texts.push_back(m_parameter.m_strValue);
    EXPECT_EQ(texts, (std::vector<std::string>{m_text, m_text}));
}

TEST_P(TextOfAParameter, IsAKeyByItsOwnType)
{
    std::map<CByteString, int> map;
    map[m_parameter.m_strName] = 5;
    EXPECT_EQ(map[m_text], 5);
    std::unordered_map<CByteString, int> hashed;
    hashed[m_parameter.m_strName] = 5;
    EXPECT_EQ(hashed[m_text], 5);
}
