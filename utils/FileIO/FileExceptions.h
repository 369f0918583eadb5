#pragma once

#include <cstdint>
#include <string>

/// The root of what the file layer throws, always by value. Says where in the source the failure
/// was raised and what it was. May be caught by value: the handler then has these three fields.
class CCodeException
{
public:
    CCodeException() = default;
    CCodeException(const CCodeException&) = default;

    void operator=(CCodeException& other);

    /// A literal from the preprocessor: outlives the object and is not owned.
    const char* m_pszSourceFile = nullptr;
    std::int32_t m_nSourceLine = 0;
    /// The failure as a sentence.
    std::string m_strDescription;
};

/// Stands for memory that ran out. Nothing raises it at present.
class CFileMemoryException : public CCodeException
{
public:
    CFileMemoryException() = default;
    CFileMemoryException(const CFileMemoryException&) = default;

    void operator=(CFileMemoryException& other);
};

/// A file that cannot be opened or positioned.
class CFileIOException : public CCodeException
{
public:
    enum FileExceptionCode : std::int32_t
    {
        kOpenFailed = 1,
        kFileClosed = 2,
        kSetPosition = 3,
        kGetPosition = 4,
        kFileRead = 5,
        kFileWrite = 6,
        kFileClose = 7,
        kFileLength = 8,
        kCannotDelete = 9,
        /// Has a status but no sentence.
        kNoDescription = 10,
    };

    /// The description is made here, from the name, the code and the detail; throws std::bad_alloc
    /// if there is no memory for it. The source file has to be a literal.
    CFileIOException(const std::string& strFileName, FileExceptionCode nCode, unsigned long nDetail,
                     const char* pszSourceFile, int nSourceLine);
    CFileIOException(const CFileIOException&) = default;

    /// Copies everything but the file name: the target has the other's sentence and its own name.
    void operator=(CFileIOException& other);

    /// Replaces the file name and the description. The code and the detail stay as they were.
    void SetDescription(const std::string& strFileName, FileExceptionCode nCode,
                        unsigned long nDetail);

    /// The status number of the code; 3002 for a code that is none of the ten.
    int GetStatus() const;

    /// The file as the thrower knew it; may be empty.
    std::string m_strFileName;
    FileExceptionCode m_nCode;
    /// The number at the end of the description, where only its low 32 bits show. Not errno: 1
    /// where a library call failed and 0 where the file was not open.
    unsigned long m_nDetail;
};
