#include "TarvaneLinkShared/ScriptNumbers.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <system_error>

namespace
{
template <typename Integer> Integer IntegerFromText(const char* szText)
{
    const char* pFirst = szText + std::strspn(szText, " \t\n\v\f\r");
    const bool fNegative = *pFirst == '-';
    // from_chars takes no plus sign, and "+-1" is no number.
    if (*pFirst == '+' && pFirst[1] != '-')
        ++pFirst;
    Integer nValue = 0;
    const auto result = std::from_chars(pFirst, pFirst + std::strlen(pFirst), nValue);
    if (result.ec != std::errc::result_out_of_range)
        return nValue;
    return fNegative ? std::numeric_limits<Integer>::min() : std::numeric_limits<Integer>::max();
}
} // namespace

long LongFromText(const char* szText)
{
    return IntegerFromText<long>(szText);
}

long long LongLongFromText(const char* szText)
{
    return IntegerFromText<long long>(szText);
}

int IntFromText(const char* szText)
{
    return IntegerFromText<int>(szText);
}

double DoubleFromText(const char* szText)
{
    // A host may have set any locale, and strtod follows it: "1.5" would end at the point, "1,5"
    // would not end at the comma.
    const std::string localPoint = std::localeconv()->decimal_point;
    if (localPoint == ".")
        return std::strtod(szText, nullptr);

    std::string number = szText;
    const auto nForeignPoint = number.find(localPoint);
    if (nForeignPoint != std::string::npos)
        number.resize(nForeignPoint);
    const auto nPoint = number.find('.');
    if (nPoint != std::string::npos)
        number.replace(nPoint, 1, localPoint);
    return std::strtod(number.c_str(), nullptr);
}

long long WholeSamples(double dPosition)
{
    constexpr double dTwoTo63 = 9223372036854775808.0;
    if (std::isnan(dPosition))
        return 0;
    if (dPosition >= dTwoTo63)
        return std::numeric_limits<long long>::max();
    if (dPosition < -dTwoTo63)
        return std::numeric_limits<long long>::min();
    return static_cast<long long>(dPosition);
}
