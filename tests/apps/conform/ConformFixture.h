// Runs tarvane-conform, and reads what it found.
#pragma once

#include "tests/apps/support/process/Ended.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace TarvaneTest
{

constexpr std::chrono::seconds kAnyTime{200};

struct ConformEnded : Ended
{
    /// The rules with this outcome.
    std::vector<std::string> Rules(const std::string& strOutcome) const
    {
        std::vector<std::string> names;
        const nlohmann::json findings = nlohmann::json::parse(strOutput);
        for (const auto& rule : findings["rules"])
            if (rule["outcome"] == strOutcome)
                names.push_back(rule["rule"]);
        return names;
    }

    /// What is told of a rule's last exchange, a line each.
    std::string Told(const std::string& strRule) const
    {
        std::string strTold;
        const nlohmann::json findings = nlohmann::json::parse(strOutput);
        for (const auto& rule : findings["rules"])
            if (rule["rule"] == strRule)
                for (const std::string strLine : rule["told"])
                    strTold += strLine + "\n";
        return strTold;
    }
};

inline std::string FileText(const char* szPath)
{
    std::ifstream file(szPath);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline ConformEnded RunConform(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), CONFORM_PROGRAM);
    return {RunToEnd(arguments)};
}

} // namespace TarvaneTest
