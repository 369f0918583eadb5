#pragma once

#include <string>

struct __CFString;
struct CDiskPathEnumerator;
class CFileName;

/// A directory: its path and, while one runs, a walk over the files below it.
///
/// The path is UTF-8 bytes, with or without a trailing "/", and nothing normalises it; empty means
/// no path. A null text counts as an empty one. One thread at a time uses an object. Nothing here
/// throws or logs: every failure is a result. A path that is not valid UTF-8 names nothing that
/// exists.
class CDiskPath
{
public:
    CDiskPath();
    explicit CDiskPath(const std::string* pstrPath);
    explicit CDiskPath(const char* pszPath);
    /// Empty if the string is null or has no UTF-8 form.
    explicit CDiskPath(const __CFString* strPath);
    /// Copies the path alone; the copy has no walk.
    CDiskPath(const CDiskPath& other);
    ~CDiskPath();

    /// Takes over the path and ends this object's own walk. The other's walk goes on.
    CDiskPath& operator=(const CDiskPath& other);

    /// Byte for byte: a trailing "/" makes a difference.
    bool operator==(const CDiskPath& other) const;

    bool Empty() const;

    /// Changes the path and nothing else: a running walk stays on the old directory.
    void Set(const std::string* pstrPath);

    std::string GetFullPathString() const;

    /// A new string, which the caller releases. Null if the path is not valid UTF-8.
    __CFString* GetFullPathCFString() const;

    /// Whether there is an item of any kind at the path; a plain file counts.
    bool Exists();

    /// Removes the directory, which has to be empty. 0 or, on failure, -1; 0 for an empty path.
    int DirDelete();

    /// A new, empty directory in the platform's temporary directory. It stays on disk until the
    /// caller removes it (DirDelete). An empty path if it could not be made.
    static CDiskPath MakeTemporaryDirectory();

    /// Starts a walk, in place of one that runs, and fills *pFile with its first match. The
    /// extension has no point and compares exactly; an empty one matches entries that have none.
    /// The walk descends into subdirectories, in no particular order: an entry from below has its
    /// subdirectory in the name part ("sub/take.wav"). A directory with the extension is a match as
    /// well. False, with *pFile untouched, when there is no match or no directory. Neither this nor
    /// NextFile opens an autorelease pool: the caller has one.
    bool FirstFile(CFileName* pFile, const char* pszExtension);

    /// The next match. False, with *pFile untouched, when the walk is over or none runs.
    bool NextFile(CFileName* pFile);

private:
    void DropWalk();

    std::string m_strPath;
    /// Owned; null while no walk runs.
    CDiskPathEnumerator* m_pEnumerator;
};
