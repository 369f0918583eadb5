#pragma once

#include <cstdio>
#include <string>

class CFileName;

/// One open file at a time, over a buffered C library stream. Positions and counts are in bytes;
/// the stream's buffer is the only one. One thread at a time uses an object.
///
/// Opening and positioning throw CFileIOException. A short read or write does not: its count tells.
/// Nothing tells of a failing close, so data that has to be safe on disk needs more than Close.
/// A failure leaves the object as it was.
class CFileIO
{
public:
    CFileIO();
    CFileIO(const CFileIO&) = delete;
    CFileIO& operator=(const CFileIO&) = delete;
    /// Closes the file, without the overrides of a derived class.
    virtual ~CFileIO();

    /// Closes what is open, even if the new file then cannot be opened. To write and create makes
    /// or empties the file; to write alone takes an existing file with its content; to read takes
    /// an existing file, whatever fCreate says. What is open for writing can be read as well, with
    /// a SetPosition between the two. Throws kOpenFailed.
    virtual void Open(const CFileName* pFile, bool fWrite, bool fCreate);

    /// Never throws; a closed object stays closed.
    virtual void Close();

    virtual bool IsOpen() const;

    /// From the start of the file; beyond its end is allowed. Always 0. Throws kFileClosed and
    /// kSetPosition.
    virtual int SetPosition(unsigned long nOffset);

    /// From the start of the file. Throws kFileClosed and kGetPosition.
    virtual unsigned long GetPosition();

    /// Leaves the position where it is. Throws kFileClosed, and nothing else: what is open but has
    /// no length, a pipe or a directory, gives a meaningless number.
    virtual unsigned long GetLength();

    /// The count that was read, smaller than asked at the end of the file. 0 if no file is open.
    virtual unsigned long Read(unsigned long nCount, unsigned char* pTarget);

    /// The count that was taken, smaller than asked on failure. 0 if no file is open.
    virtual unsigned long Write(unsigned long nCount, const unsigned char* pSource);

    /// Writes the text without its terminator and, for a line end, CR and LF. The count of both.
    virtual unsigned long WriteString(const char* pszText, bool fLineEnd);

    /// Does nothing and gives 0.
    virtual int PreAllocate(long nSize);

    /// Does nothing and gives 0; CFileName::SetCreatorType is what sets them.
    int SetFileCreatorType(const CFileName* pFile, unsigned long nCreator, unsigned long nType);

protected:
    /// Owned; null while closed.
    std::FILE* m_pFile;
    /// The full path of the file last asked for, also after a failed Open. Empty after Close.
    std::string m_strFileName;
};
