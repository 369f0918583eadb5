#include "apps/support/recording/ScriptCalls.h"

#include <algorithm>

namespace Tarvane
{
namespace
{

bool IsNamePart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Words of the language that may stand before a bracket.
bool IsFunction(const std::string& strName)
{
    static const std::string keywords[] = {"if",  "and", "or",    "not",    "while",
                                           "for", "in",  "until", "return", "print"};
    return !strName.empty() &&
           std::find(std::begin(keywords), std::end(keywords), strName) == std::end(keywords);
}

} // namespace

std::vector<std::string> ScriptCalls(const std::string& strScript)
{
    std::vector<std::string> calls;
    std::string strName;
    bool fQuoted = false;
    for (const char c : strScript)
    {
        fQuoted = fQuoted != (c == '"');
        if (!fQuoted && c == '(' && IsFunction(strName) &&
            std::find(calls.begin(), calls.end(), strName) == calls.end())
            calls.push_back(strName);
        if (!fQuoted && IsNamePart(c))
            strName += c;
        else
            strName.clear();
    }
    return calls;
}

std::string WhatItAsks(const std::string& strScript)
{
    std::vector<std::string> calls = ScriptCalls(strScript);
    if (calls.size() > 1 && calls[0] == "SelectScriptDocument")
        calls.erase(calls.begin());
    std::string strText;
    for (const std::string& strCall : calls)
        strText += (strText.empty() ? "" : ", ") + strCall;
    return strText.empty() ? strScript : strText;
}

} // namespace Tarvane
