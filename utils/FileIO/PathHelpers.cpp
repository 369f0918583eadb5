#include "utils/FileIO/PathHelpers.h"

namespace
{

std::string Join(const char* pszHead, const char* pszTail, char chSeparator)
{
    std::string strJoined(pszHead);
    if (!strJoined.empty() && strJoined.back() != chSeparator)
        strJoined += chSeparator;
    strJoined += *pszTail == chSeparator ? pszTail + 1 : pszTail;
    return strJoined;
}

// Positions in a path are signed, with -1 for "nowhere".
int LastPosition(const std::string& strText, char chSought)
{
    return static_cast<int>(strText.rfind(chSought));
}

} // namespace

std::string AddPath(const char* pszBase, const char* pszTail)
{
    return Join(pszBase, pszTail, '\\');
}

std::string AddExtension(const char* pszName, const char* pszExtension)
{
    return Join(pszName, pszExtension, '.');
}

std::string GetExtension(const std::string* pstrName)
{
    const std::string::size_type nPoint = pstrName->rfind('.');
    return nPoint == std::string::npos ? std::string() : pstrName->substr(nPoint + 1);
}

std::string GetExtractName(const std::string* pstrPath)
{
    const int nPoint = LastPosition(*pstrPath, '.');
    const int nEnd = nPoint > 0 ? nPoint : static_cast<int>(pstrPath->length());
    const int nStart = LastPosition(*pstrPath, '/') + 1;
    // With the point in a directory's name the count is negative, which as a size means "the rest".
    return pstrPath->substr(nStart, nEnd - nStart);
}

std::string ExtractPath(const std::string* pstrPath)
{
    const int nSlash = LastPosition(*pstrPath, '/');
    return nSlash < 1 ? std::string() : pstrPath->substr(0, nSlash);
}
