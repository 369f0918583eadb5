#include "TarvaneLinkShared/ScriptComposer.h"

#include <charconv>

namespace
{
constexpr std::size_t kLongestNumber = 32;
constexpr int kSignificantDigits = 6;
} // namespace

CScriptComposer::CScriptComposer(bool fAudioSuite)
    : m_strText(fAudioSuite ? "if SelectAudioSuiteDocument() then\n"
                            : "if SelectScriptDocument() then\n")
{
}

CScriptComposer& CScriptComposer::operator<<(std::string_view text)
{
    m_strText += text;
    return *this;
}

CScriptComposer& CScriptComposer::operator<<(double dNumber)
{
    char digits[kLongestNumber];
    const auto [pEnd, ignored] = std::to_chars(digits, digits + sizeof(digits), dNumber,
                                               std::chars_format::general, kSignificantDigits);
    m_strText.append(digits, pEnd);
    return *this;
}

CScriptComposer& CScriptComposer::AppendInteger(std::int64_t nNumber)
{
    char digits[kLongestNumber];
    const auto [pEnd, ignored] = std::to_chars(digits, digits + sizeof(digits), nNumber);
    m_strText.append(digits, pEnd);
    return *this;
}
