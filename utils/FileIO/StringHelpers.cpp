#include "utils/FileIO/StringHelpers.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <new>

namespace
{

constexpr int kMaxPascalLength = 255;
constexpr int kMaxFromCString = 254;

// -1, 0 or 1 for two Pascal strings whose bytes are compared as what keyOf makes of them.
template <typename KeyOf>
short Compare(const unsigned char* pFirst, const unsigned char* pSecond, KeyOf keyOf)
{
    const int nShared = std::min(pFirst[0], pSecond[0]);
    for (int n = 1; n <= nShared; ++n)
    {
        const auto first = keyOf(pFirst[n]);
        const auto second = keyOf(pSecond[n]);
        if (first != second)
            return first < second ? -1 : 1;
    }
    if (pFirst[0] == pSecond[0])
        return 0;
    return pFirst[0] < pSecond[0] ? -1 : 1;
}

} // namespace

void PtoCcpy(char* pszTarget, const unsigned char* pSource)
{
    const int nLength = pSource[0];
    std::memmove(pszTarget, pSource + 1, nLength);
    pszTarget[nLength] = '\0';
}

void CtoPcpy(unsigned char* pTarget, const char* pszSource)
{
    int nCount = 0;
    for (; nCount < kMaxFromCString && pszSource[nCount] != '\0'; ++nCount)
        pTarget[nCount + 1] = static_cast<unsigned char>(pszSource[nCount]);
    pTarget[0] = static_cast<unsigned char>(nCount);
}

short PtoCcmp(const unsigned char* pFirst, const char* pszSecond)
{
    char szFirst[kMaxPascalLength + 1];
    PtoCcpy(szFirst, pFirst);
    return static_cast<short>(std::strcmp(szFirst, pszSecond));
}

void pstrcpy(unsigned char* pTarget, const unsigned char* pSource)
{
    std::memmove(pTarget, pSource, pSource[0] + 1);
}

void pstrcpyn(unsigned char* pTarget, const unsigned char* pSource, int nLimit)
{
    const int nLength = pSource[0];
    const int nCount = std::min(nLimit, nLength);
    // Far below zero a limit comes out positive in 16 bits; the source still has no more to give.
    const int nCopied = std::min<int>(static_cast<short>(nCount), nLength);
    if (nCopied > 0)
        std::memmove(pTarget + 1, pSource + 1, nCopied);
    pTarget[0] = static_cast<unsigned char>(nCount);
}

void pstrcat(unsigned char* pTarget, const unsigned char* pSource)
{
    const int nLength = pTarget[0];
    const int nCopied = std::min<int>(pSource[0], kMaxPascalLength - nLength);
    std::memmove(pTarget + 1 + nLength, pSource + 1, nCopied);
    pTarget[0] = static_cast<unsigned char>(nLength + nCopied);
}

short pstrcmp(const unsigned char* pFirst, const unsigned char* pSecond)
{
    return Compare(pFirst, pSecond, [](unsigned char ch) { return ch; });
}

short pstrcmpi(const unsigned char* pFirst, const unsigned char* pSecond)
{
    // Signed on purpose, unlike pstrcmp.
    return Compare(pFirst, pSecond,
                   [](unsigned char ch) { return static_cast<signed char>(std::tolower(ch)); });
}

bool PStringEndCompare(const unsigned char* pString, const unsigned char* pEnding)
{
    const int nLength = pEnding[0];
    if (pString[0] < nLength)
        return false;
    const unsigned char* pTail = pString + 1 + pString[0] - nLength;
    return std::equal(pTail, pTail + nLength, pEnding + 1,
                      [](unsigned char first, unsigned char second)
                      { return std::toupper(first) == std::toupper(second); });
}

void StringTruncate(char* pszString, int nSize)
{
    const std::size_t nLength = std::strlen(pszString);
    if (nSize >= 0 && nLength <= static_cast<std::size_t>(nSize))
        return;
    pszString[nSize > 0 ? nSize - 1 : 0] = '\0';
}

void PStringTruncate(unsigned char* pString, int nLimit)
{
    if (pString[0] > nLimit)
        pString[0] = static_cast<unsigned char>(std::max(nLimit, 0));
}

bool PStringContains(const unsigned char* pString, const unsigned char* pSought, int* pnPosition)
{
    if (pString[0] < pSought[0])
        return false;
    int nPosition = 0;
    // The last possible start stays untried on purpose.
    for (int nStart = 0; nStart < pString[0] - pSought[0] && nPosition == 0; ++nStart)
    {
        if (std::memcmp(pString + 1 + nStart, pSought + 1, pSought[0]) == 0)
            nPosition = nStart + 1;
    }
    if (pnPosition != nullptr)
        *pnPosition = nPosition;
    return nPosition != 0;
}

char* substituteToken(const char* pszToken, char* pszBuffer, const char* pszReplacement)
{
    const std::size_t nReplacement = std::strlen(pszReplacement);
    const std::size_t nToken = std::strlen(pszToken);
    if (std::strstr(pszReplacement, pszToken) != nullptr)
        return pszBuffer;

    char* pszFound = std::strstr(pszBuffer, pszToken);
    while (pszFound != nullptr)
    {
        if (nReplacement > nToken)
        {
            const std::size_t nLength = std::strlen(pszBuffer);
            char* pszLarger = new (std::nothrow) char[nLength + (nReplacement - nToken) + 1];
            if (pszLarger == nullptr)
            {
                delete[] pszBuffer;
                return nullptr;
            }
            std::memcpy(pszLarger, pszBuffer, nLength + 1);
            delete[] pszBuffer;
            pszBuffer = pszLarger;
            pszFound = std::strstr(pszBuffer, pszToken);
        }
        if (nReplacement != nToken)
        {
            const char* pszRest = pszFound + nToken;
            std::memmove(pszFound + nReplacement, pszRest, std::strlen(pszRest) + 1);
        }
        std::memcpy(pszFound, pszReplacement, nReplacement);
        pszFound = std::strstr(pszBuffer, pszToken);
    }
    return pszBuffer;
}

void lstrcpyn(char* pszTarget, const char* pszSource, int nSize)
{
    int nCopied = 0;
    for (; nCopied + 1 < nSize && pszSource[nCopied] != '\0'; ++nCopied)
        pszTarget[nCopied] = pszSource[nCopied];
    pszTarget[nCopied] = '\0';
}
