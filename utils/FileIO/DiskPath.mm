#include "utils/FileIO/DiskPath.h"

#include "utils/FileIO/CFStringToCString.h"
#include "utils/FileIO/FileName.h"
#import "utils/FileIO/FileServices.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

// A running walk. Holds one reference to each of its objects.
struct CDiskPathEnumerator
{
    NSFileManager* m_fileManager;
    NSDirectoryEnumerator* m_enumerator;
    NSString* m_extension;
};

namespace
{

// Null for a null text and for one that is not valid UTF-8.
NSString* TextOfWalk(const char* pszText)
{
    return pszText == nullptr ? nil : [NSString stringWithUTF8String:pszText];
}

} // namespace

CDiskPath::CDiskPath() : m_pEnumerator(nullptr) {}

CDiskPath::CDiskPath(const std::string* pstrPath) : m_pEnumerator(nullptr) { Set(pstrPath); }

CDiskPath::CDiskPath(const char* pszPath)
    : m_strPath(pszPath == nullptr ? "" : pszPath), m_pEnumerator(nullptr)
{
}

CDiskPath::CDiskPath(const __CFString* strPath)
    : m_strPath(TextOfCFString(strPath)), m_pEnumerator(nullptr)
{
}

CDiskPath::CDiskPath(const CDiskPath& other) : m_strPath(other.m_strPath), m_pEnumerator(nullptr) {}

CDiskPath::~CDiskPath() { DropWalk(); }

CDiskPath& CDiskPath::operator=(const CDiskPath& other)
{
    m_strPath = other.m_strPath;
    DropWalk();
    return *this;
}

bool CDiskPath::operator==(const CDiskPath& other) const { return m_strPath == other.m_strPath; }

bool CDiskPath::Empty() const { return m_strPath.empty(); }

void CDiskPath::Set(const std::string* pstrPath)
{
    if (pstrPath == nullptr)
        m_strPath.clear();
    else
        m_strPath = *pstrPath;
}

std::string CDiskPath::GetFullPathString() const { return m_strPath; }

__CFString* CDiskPath::GetFullPathCFString() const { return NewCFString(m_strPath); }

bool CDiskPath::Exists()
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const bool fExists = AttributesOfItem(m_strPath) != nil;
    [pool drain];
    return fExists;
}

int CDiskPath::DirDelete() { return m_strPath.empty() ? 0 : std::remove(m_strPath.c_str()); }

CDiskPath CDiskPath::MakeTemporaryDirectory()
{
    CDiskPath path;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const std::unique_ptr<char[]> pszTemplate = TemporaryTemplate(@"TarvnXXXXXX");
    if (mkdtemp(pszTemplate.get()) != nullptr)
        path.m_strPath = pszTemplate.get();
    [pool drain];
    return path;
}

bool CDiskPath::FirstFile(CFileName* pFile, const char* pszExtension)
{
    DropWalk();
    m_pEnumerator = new CDiskPathEnumerator();
    m_pEnumerator->m_extension = [TextOfWalk(pszExtension) retain];
    NSString* strPath = TextOfWalk(m_strPath.c_str());
    m_pEnumerator->m_fileManager = [[NSFileManager alloc] init];
    if (strPath != nil)
        m_pEnumerator->m_enumerator =
            [[m_pEnumerator->m_fileManager enumeratorAtPath:strPath] retain];
    return NextFile(pFile);
}

bool CDiskPath::NextFile(CFileName* pFile)
{
    if (m_pEnumerator == nullptr)
        return false;
    while (NSString* strEntry = [m_pEnumerator->m_enumerator nextObject])
    {
        if ([[strEntry pathExtension] isEqualToString:m_pEnumerator->m_extension])
        {
            *pFile = CFileName(this, [strEntry UTF8String]);
            return true;
        }
    }
    DropWalk();
    return false;
}

void CDiskPath::DropWalk()
{
    if (m_pEnumerator == nullptr)
        return;
    [m_pEnumerator->m_enumerator release];
    [m_pEnumerator->m_fileManager release];
    [m_pEnumerator->m_extension release];
    delete m_pEnumerator;
    m_pEnumerator = nullptr;
}
