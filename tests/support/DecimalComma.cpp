#include "tests/support/DecimalComma.h"

#include <clocale>
#include <cstdlib>
#include <stdexcept>

namespace TarvaneTests
{
namespace
{
class CommaPunctuation : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};
} // namespace

DecimalComma::DecimalComma(const char* szLocale) : m_previousC(std::setlocale(LC_ALL, nullptr))
{
#ifdef TARVANE_TEST_LOCALES
    // Made by the build, so that no locale has to be installed.
    setenv("LOCPATH", TARVANE_TEST_LOCALES, 1);
#endif
    if (std::setlocale(LC_ALL, szLocale) == nullptr)
        throw std::runtime_error(std::string("There is no locale ") + szLocale + ".");
    m_previousCpp = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
}

DecimalComma::~DecimalComma()
{
    std::locale::global(m_previousCpp);
    std::setlocale(LC_ALL, m_previousC.c_str());
}

} // namespace TarvaneTests
