#include "apps/support/text/DecimalNumber.h"

#include <cmath>
#include <cstdlib>
#include <locale.h>

#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

namespace Tarvane
{
namespace
{

locale_t PlainLocale()
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

float Read(const char* szText, char** ppEnd, float)
{
    return strtof_l(szText, ppEnd, PlainLocale());
}

double Read(const char* szText, char** ppEnd, double)
{
    return strtod_l(szText, ppEnd, PlainLocale());
}

// Without a digit that counts, so that a number that is 0 was written so.
bool IsZero(const std::string& strText)
{
    return strText.find_first_of("123456789") >= strText.find_first_of("eE");
}

} // namespace

template <typename Float> std::optional<Float> DecimalFrom(const std::string& strText)
{
    if (strText.empty() || strText[0] == '+' ||
        strText.find_first_not_of("0123456789.eE+-") != std::string::npos)
        return std::nullopt;
    char* pEnd = nullptr;
    const Float number = Read(strText.c_str(), &pEnd, Float());
    if (pEnd != strText.c_str() + strText.size() || std::isinf(number) ||
        (number == 0 && !IsZero(strText)))
        return std::nullopt;
    return number;
}

template std::optional<float> DecimalFrom(const std::string& strText);
template std::optional<double> DecimalFrom(const std::string& strText);

} // namespace Tarvane
