// What a failed assertion of the drawing layer reports.
#pragma once

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <string>

namespace TarvaneTests
{

inline std::string LineOf(const char* szFile, int nLine)
{
    std::ifstream file(szFile);
    std::string strLine;
    while (nLine-- > 0)
        if (!std::getline(file, strLine))
            return "(no such line)";
    return strLine;
}

/// The expression, the function and the source file; and at the line of that file which the report
/// names stands this assertion.
MATCHER_P2(Reports, strExpression, strFunction, "reports " + std::string(strExpression))
{
    const std::regex report("Assertion failed: \\((.+)\\), function (.+), "
                            "file (?:.*/)?Graphics/TGLGraphics\\.mm, line ([0-9]+)\\.");
    std::smatch parts;
    const std::string strText = arg;
    if (!std::regex_search(strText, parts, report) || parts[1] != strExpression ||
        parts[2] != strFunction)
        return false;
    const std::string strLine = LineOf(DRAWING_LAYER_SOURCE, std::stoi(parts[3]));
    *result_listener << "at whose line stands " << strLine;
    return strLine.find("ASSERT(" + std::string(strExpression) + ")") != std::string::npos;
}

} // namespace TarvaneTests
