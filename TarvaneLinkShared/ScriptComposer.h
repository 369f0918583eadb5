#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

/// The text of a script under way. Numbers come out without grouping and with a decimal point in
/// every locale.
class CScriptComposer
{
public:
    /// Starts with the line that selects the document, which the last line, "end\n", closes.
    explicit CScriptComposer(bool fAudioSuite);

    CScriptComposer& operator<<(std::string_view text);
    CScriptComposer& operator<<(std::integral auto nNumber) { return AppendInteger(nNumber); }

    /// With six significant digits, as streams write it.
    CScriptComposer& operator<<(double dNumber);

    const std::string& Text() const { return m_strText; }

private:
    CScriptComposer& AppendInteger(std::int64_t nNumber);

    std::string m_strText;
};
