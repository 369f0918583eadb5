#include "apps/session/EntryPath.h"

#include "apps/session/EntryText.h"
#include "apps/support/program/CommandLine.h"

#include <charconv>

namespace Tarvane::Session
{

namespace
{

constexpr std::string_view kSpecial = "/[\\";

CUsageError NoPath(std::string_view text, const char* pWhy)
{
    return CUsageError("\"" + std::string(text) + "\" is no path: " + pWhy +
                       ". Paths look like Track[2]/Region/Gain.");
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// One name, with what "\" hides in it brought back; stops at "/", "[" or the end.
std::string ParseName(std::string_view text, std::size_t& nAt)
{
    std::string strName;
    for (; nAt < text.size() && text[nAt] != '/' && text[nAt] != '['; ++nAt)
    {
        if (text[nAt] != '\\')
        {
            strName += text[nAt];
            continue;
        }
        if (++nAt == text.size())
            throw NoPath(text, "a \\ stands at its end");
        if (text[nAt] != 'x')
        {
            strName += text[nAt];
            continue;
        }
        const int nHigh = nAt + 2 < text.size() ? HexValue(text[nAt + 1]) : -1;
        const int nLow = nHigh >= 0 ? HexValue(text[nAt + 2]) : -1;
        if (nLow < 0)
            throw NoPath(text, "\\x takes two digits, 0 to f");
        strName += static_cast<char>(nHigh << 4 | nLow);
        nAt += 2;
    }
    return strName;
}

std::size_t ParseIndex(std::string_view text, std::size_t& nAt)
{
    std::size_t nIndex = 0;
    const char* pEnd = text.data() + text.size();
    const auto result = std::from_chars(text.data() + nAt + 1, pEnd, nIndex);
    if (result.ec != std::errc() || result.ptr == pEnd || *result.ptr != ']')
        throw NoPath(text, "[ takes a number and a ]");
    nAt = static_cast<std::size_t>(result.ptr + 1 - text.data());
    return nIndex;
}

const CParameter* FindStep(const CParameterBlock& block, const PathStep& step)
{
    std::size_t nToPass = step.nIndex;
    for (const CParameter* pEntry : block.m_vParameters)
        if (pEntry && pEntry->m_strName == step.strName && nToPass-- == 0)
            return pEntry;
    return nullptr;
}

} // namespace

std::string FormatPath(const std::vector<PathStep>& steps)
{
    std::string text;
    for (const PathStep& step : steps)
    {
        if (!text.empty())
            text += '/';
        text += PrintableText(step.strName, kSpecial);
        if (step.nIndex > 0 || step.strName.empty())
            text += "[" + std::to_string(step.nIndex) + "]";
    }
    return text.empty() ? "/" : text;
}

std::vector<PathStep> ParsePath(std::string_view text)
{
    std::vector<PathStep> steps;
    if (text.empty() || text == "/")
        return steps;
    std::size_t nAt = text.front() == '/' ? 1 : 0;
    for (;;)
    {
        PathStep step{ParseName(text, nAt), 0};
        if (nAt < text.size() && text[nAt] == '[')
            step.nIndex = ParseIndex(text, nAt);
        steps.push_back(std::move(step));
        if (nAt == text.size())
            return steps;
        if (text[nAt++] != '/')
            throw NoPath(text, "behind ] comes a / or the end");
    }
}

const CParameter* FindEntry(const CParameterBlock& root, const std::vector<PathStep>& steps)
{
    const CParameter* pEntry = &root;
    for (const PathStep& step : steps)
    {
        if (pEntry->m_nType != CParameterBlock::kType)
            return nullptr;
        pEntry = FindStep(static_cast<const CParameterBlock&>(*pEntry), step);
        if (!pEntry)
            return nullptr;
    }
    return pEntry;
}

} // namespace Tarvane::Session
