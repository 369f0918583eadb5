#pragma once

#include "utils/FileIO/DiskPath.h"

#include <string>

struct __CFString;

/// A file: a directory part and a name part. The type in which files pass through the system.
///
/// Both parts are UTF-8 bytes; the name may contain "/" when it comes from a directory walk. A null
/// text counts as an empty one, a null directory as an empty path. One thread at a time uses an
/// object. Nothing here throws; what fails says so in its result, through NSLog, or not at all, as
/// told below. A path that is not valid UTF-8 names nothing that the file manager finds.
class CFileName
{
public:
    CFileName();
    CFileName(const CFileName& other);

    /// Split at the last "/", which belongs to neither part. Without one the whole text is the
    /// name. The root gets no special treatment: "/take.wav" is "take.wav" in no directory.
    explicit CFileName(const std::string* pstrPath);
    explicit CFileName(const char* pszPath);
    /// Empty if the string is null or has no UTF-8 form.
    explicit CFileName(const __CFString* strPath);

    /// Directory and name as they are passed, without a split.
    CFileName(CDiskPath* pPath, const std::string* pstrName);
    CFileName(CDiskPath* pPath, const char* pszName);
    CFileName(CDiskPath* pPath, const __CFString* strName);

    void operator=(const CFileName& other);

    /// Part by part, byte for byte: equal full paths with different splits are not equal.
    bool operator==(const CFileName& other) const;

    bool Empty() const;

    /// Directory, a "/" unless the directory is empty or ends in one, and name.
    std::string GetFullPath() const;
    std::string GetFullPathString() const;

    /// New strings, which the caller releases. Null if the text is not valid UTF-8.
    __CFString* GetFullPathCFString() const;
    __CFString* GetNameCFString() const;

    /// What follows the last point of the name; the directory part is not looked at.
    std::string GetExtension();

    /// The file as URL-like text on "localhost". Backslashes turn into "/", colons are dropped,
    /// nothing is percent-encoded.
    std::string GetURL();

    /// Puts an underscore in place of each of " * : < > ? \ | in the name.
    void Clean();

    /// Whether attributes can be read at the full path; a directory counts.
    bool Exists();

    /// Removes the file. The result is 0 whatever happens; CDiskPath::DirDelete tells, this does
    /// not.
    int FileDelete();

    /// Moves the file to a complete new path, where nothing may stand yet. The object goes on
    /// naming the old file. False and a line through NSLog on failure.
    bool RenameFile(const char* pszNewPath);

    /// Four-character codes. A line through NSLog on failure.
    void SetCreatorType(unsigned long nCreator, unsigned long nType);

    /// Seconds since the start of 1970. 0.0, silently, if the attributes cannot be read.
    double GetModificationDateTime();

    /// Seconds since the start of 1970. A line through NSLog on failure.
    void SetModificationDateTime(double dSeconds);

    /// A new file of length 0 in the platform's temporary directory, which stays until it is
    /// deleted. Empty if it could not be made.
    static CFileName MakeTemporaryFileName();

private:
    void Split(const std::string& strPath);

    std::string m_strName;
    CDiskPath m_path;
};
