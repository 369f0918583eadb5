#include "utils/FileIO/FileIO.h"

#include "utils/FileIO/FileExceptions.h"
#include "utils/FileIO/FileName.h"

#include <cstring>

namespace
{

constexpr unsigned long kCallFailed = 1;
constexpr unsigned long kNotOpen = 0;

const char* OpenMode(bool fWrite, bool fCreate)
{
    if (!fWrite)
        return "r";
    return fCreate ? "w+" : "r+";
}

const unsigned char* Bytes(const char* pszText)
{
    return reinterpret_cast<const unsigned char*>(pszText);
}

} // namespace

CFileIO::CFileIO() : m_pFile(nullptr) {}

CFileIO::~CFileIO()
{
    CFileIO::Close();
}

void CFileIO::Open(const CFileName* pFile, bool fWrite, bool fCreate)
{
    Close();
    m_strFileName = pFile->GetFullPath();
    m_pFile = std::fopen(m_strFileName.c_str(), OpenMode(fWrite, fCreate));
    if (m_pFile == nullptr)
        throw CFileIOException(m_strFileName, CFileIOException::kOpenFailed, kCallFailed, __FILE__,
                               __LINE__);
}

void CFileIO::Close()
{
    if (m_pFile != nullptr)
    {
        std::fclose(m_pFile);
        m_pFile = nullptr;
    }
    m_strFileName.clear();
}

bool CFileIO::IsOpen() const
{
    return m_pFile != nullptr;
}

int CFileIO::SetPosition(unsigned long nOffset)
{
    if (!IsOpen())
        throw CFileIOException(m_strFileName, CFileIOException::kFileClosed, kNotOpen, __FILE__,
                               __LINE__);
    if (std::fseek(m_pFile, static_cast<long>(nOffset), SEEK_SET) != 0)
        throw CFileIOException(m_strFileName, CFileIOException::kSetPosition, kCallFailed, __FILE__,
                               __LINE__);
    return 0;
}

unsigned long CFileIO::GetPosition()
{
    if (!IsOpen())
        throw CFileIOException(m_strFileName, CFileIOException::kFileClosed, kNotOpen, __FILE__,
                               __LINE__);
    const long nPosition = std::ftell(m_pFile);
    if (nPosition == -1)
        throw CFileIOException(m_strFileName, CFileIOException::kGetPosition, kCallFailed, __FILE__,
                               __LINE__);
    return static_cast<unsigned long>(nPosition);
}

unsigned long CFileIO::GetLength()
{
    if (!IsOpen())
        throw CFileIOException(m_strFileName, CFileIOException::kFileClosed, kNotOpen, __FILE__,
                               __LINE__);
    const long nPosition = std::ftell(m_pFile);
    std::fseek(m_pFile, 0, SEEK_END);
    const long nLength = std::ftell(m_pFile);
    std::fseek(m_pFile, nPosition, SEEK_SET);
    return static_cast<unsigned long>(nLength);
}

unsigned long CFileIO::Read(unsigned long nCount, unsigned char* pTarget)
{
    return m_pFile == nullptr ? 0 : std::fread(pTarget, 1, nCount, m_pFile);
}

unsigned long CFileIO::Write(unsigned long nCount, const unsigned char* pSource)
{
    return m_pFile == nullptr ? 0 : std::fwrite(pSource, 1, nCount, m_pFile);
}

unsigned long CFileIO::WriteString(const char* pszText, bool fLineEnd)
{
    unsigned long nWritten = Write(std::strlen(pszText), Bytes(pszText));
    if (fLineEnd)
        nWritten += Write(2, Bytes("\r\n"));
    return nWritten;
}

int CFileIO::PreAllocate(long)
{
    return 0;
}

int CFileIO::SetFileCreatorType(const CFileName*, unsigned long, unsigned long)
{
    return 0;
}
