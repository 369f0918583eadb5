#include "TarvaneLinkShared/ScriptNumbers.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/Assertion.h"

#include <cstddef>

namespace
{
// A longer line is deliberately not cut short: its rest becomes a line of its own.
constexpr std::ptrdiff_t kLongestLine = 999;

bool IsLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

// Where the line that starts here stops.
const char* EndOfLine(const char* pLine)
{
    const char* pEnd = pLine;
    while (*pEnd != '\0' && !IsLineEnd(*pEnd) && pEnd - pLine < kLongestLine)
        ++pEnd;
    return pEnd;
}

const char* SkipLineEnds(const char* pText)
{
    while (IsLineEnd(*pText))
        ++pText;
    return pText;
}
} // namespace

void CTarvaneScript::SplitResult(const char* szResult, std::vector<std::string>* pstrItems)
{
    pstrItems->clear();
    if (szResult == nullptr)
        return;

    long nItems = 0;
    bool fFirst = true;
    for (const char* pLine = SkipLineEnds(szResult); *pLine != '\0';)
    {
        const char* pEnd = EndOfLine(pLine);
        if (fFirst)
            nItems = LongFromText(std::string(pLine, pEnd).c_str());
        else
            pstrItems->emplace_back(pLine, pEnd);
        fFirst = false;
        pLine = SkipLineEnds(pEnd);
    }

    // The four texts are what crash reports are matched by; they do not follow the source.
    if ((int)pstrItems->size() != nItems)
        AssertionFailed("SplitResult", "TarvaneLinkShared/TarvaneLinkScript", 278,
                        "(int)pstrItems->size() == nItems");
}
