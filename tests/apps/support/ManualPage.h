// A program's manual page, held against what the program says of itself.
#pragma once

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <set>
#include <string>

namespace TarvaneTest
{

/// The words that begin with two hyphens.
inline std::set<std::string> OptionsIn(const std::string& strText)
{
    constexpr const char* kLetters = "abcdefghijklmnopqrstuvwxyz-";
    std::set<std::string> options;
    for (std::size_t nAt = 0; (nAt = strText.find("--", nAt)) != std::string::npos;)
    {
        const std::size_t nEnd = strText.find_first_not_of(kLetters, nAt);
        options.insert(strText.substr(nAt, nEnd - nAt));
        nAt = std::min(nEnd, strText.size());
    }
    return options;
}

/// As it is read: without the backslash that keeps a hyphen a hyphen.
inline std::string ManualPage(const std::string& strFile)
{
    std::ifstream file(strFile);
    std::string strText{std::istreambuf_iterator<char>(file), {}};
    for (std::size_t nAt = 0; (nAt = strText.find("\\-", nAt)) != std::string::npos;)
        strText.erase(nAt, 1);
    return strText;
}

/// Each option has a paragraph of its own, headed by its name and the name of its value; the page
/// knows no other options, and tells what each exit code means.
inline void ExpectManualDescribes(const CLI::App& app, const std::string& strFile)
{
    const std::string strPage = ManualPage(strFile);
    EXPECT_EQ(OptionsIn(strPage), OptionsIn(app.help("", CLI::AppFormatMode::All)));
    for (const CLI::Option* pOption : app.get_options())
    {
        if (pOption->get_group().empty()) // not for users, and not in the help either
            continue;
        // Behind a colon it says what values are taken.
        const std::string strTypes = pOption->get_type_name();
        const std::string strType = strTypes.substr(0, strTypes.find(':'));
        if (pOption->get_lnames().empty()) // the words without an option
        {
            EXPECT_THAT(strPage, testing::HasSubstr(pOption->get_name()));
            continue;
        }
        const std::string strName = "--" + pOption->get_lnames().at(0);
        if (strName == "--help")
            EXPECT_THAT(strPage, testing::HasSubstr("\n.TP\n.BR -h \", \" --help\n"));
        else if (strType.empty())
            EXPECT_THAT(strPage, testing::HasSubstr("\n.TP\n.B " + strName + "\n"));
        else
            EXPECT_THAT(strPage,
                        testing::HasSubstr("\n.TP\n.BI " + strName + " \" " + strType + "\"\n"));
    }
    for (const char* szCode : {"0", "1", "2"})
        EXPECT_THAT(strPage, testing::HasSubstr("\n.TP\n.B " + std::string(szCode) + "\n"));
}

} // namespace TarvaneTest
