#include "utils/FileIO/FileExceptions.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>

namespace
{

struct ExceptionDescription
{
    std::int32_t m_nCode;
    const char* m_pszFormat;
};

const ExceptionDescription ExceptionDescriptions[] = {
    {CFileIOException::kOpenFailed, "%s: open failed: %d"},
    {CFileIOException::kFileClosed, "%s:fFile closed: %d"},
    {CFileIOException::kSetPosition, "%s: set position: %d"},
    {CFileIOException::kGetPosition, "%s: get position: %d"},
    {CFileIOException::kFileRead, "%s: file read: %d"},
    {CFileIOException::kFileWrite, "%s: file write: %d"},
    {CFileIOException::kFileClose, "%s: file close: %d"},
    {CFileIOException::kFileLength, "%s: file length: %d"},
    {CFileIOException::kCannotDelete, "%s: cannot delete: %d"},
    {0, nullptr},
};

const char* const kUnknownErrorFormat = "%s: unknown error: %d";
constexpr std::size_t kRoomBesideFileName = 256;

// By code minus one.
const std::int32_t kStatus[] = {3008, 3015, 3010, 3010, 3005, 3006, 3009, 3010, 3009, 4009};
constexpr int kUnknownStatus = 3002;

const char* FormatOf(CFileIOException::FileExceptionCode nCode)
{
    // The closing row is not part of the search: code 0 has no sentence.
    const auto* pEnd = std::prev(std::end(ExceptionDescriptions));
    const auto* pRow =
        std::find_if(std::begin(ExceptionDescriptions), pEnd,
                     [nCode](const ExceptionDescription& row) { return row.m_nCode == nCode; });
    return pRow == pEnd ? kUnknownErrorFormat : pRow->m_pszFormat;
}

} // namespace

void CCodeException::operator=(CCodeException& other)
{
    m_pszSourceFile = other.m_pszSourceFile;
    m_nSourceLine = other.m_nSourceLine;
    m_strDescription = other.m_strDescription;
}

void CFileMemoryException::operator=(CFileMemoryException& other)
{
    CCodeException::operator=(other);
}

CFileIOException::CFileIOException(const std::string& strFileName, FileExceptionCode nCode,
                                   unsigned long nDetail, const char* pszSourceFile,
                                   int nSourceLine)
    : m_nCode(nCode), m_nDetail(nDetail)
{
    m_pszSourceFile = pszSourceFile;
    m_nSourceLine = nSourceLine;
    SetDescription(strFileName, nCode, nDetail);
}

void CFileIOException::operator=(CFileIOException& other)
{
    // The file name stays on purpose: assigning hands on the sentence, not the file.
    m_nCode = other.m_nCode;
    m_nDetail = other.m_nDetail;
    CCodeException::operator=(other);
}

void CFileIOException::SetDescription(const std::string& strFileName, FileExceptionCode nCode,
                                      unsigned long nDetail)
{
    m_strFileName = strFileName;
    const std::size_t nSize = kRoomBesideFileName + m_strFileName.length();
    const std::unique_ptr<char[]> pszText(new char[nSize]);
    std::snprintf(pszText.get(), nSize, FormatOf(nCode), m_strFileName.c_str(),
                  static_cast<int>(nDetail));
    m_strDescription = pszText.get();
}

int CFileIOException::GetStatus() const
{
    if (m_nCode < kOpenFailed || m_nCode > kNoDescription)
        return kUnknownStatus;
    return kStatus[m_nCode - 1];
}
