#pragma once

#include <locale>
#include <string>

namespace TarvaneTests
{

/// While it lives, the process is one of a user who writes 1.234,5: the C locale is the one named,
/// de_DE.UTF-8 or tr_TR.UTF-8, and the C++ global locale has a decimal comma and groups of three.
/// Throws std::runtime_error if the machine cannot provide that.
class DecimalComma
{
public:
    explicit DecimalComma(const char* szLocale = "de_DE.UTF-8");
    ~DecimalComma();
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

private:
    std::string m_previousC;
    std::locale m_previousCpp;
};

} // namespace TarvaneTests
