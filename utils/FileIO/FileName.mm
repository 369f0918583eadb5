#include "utils/FileIO/FileName.h"

#include "utils/FileIO/CFStringToCString.h"
#import "utils/FileIO/FileServices.h"
#include "utils/FileIO/PathHelpers.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace
{

constexpr std::string_view kNotInNames = "\"*:<>?\\|";

std::string TextOf(const char* pszText)
{
    return pszText == nullptr ? std::string() : std::string(pszText);
}

std::string TextOf(const std::string* pstrText)
{
    return pstrText == nullptr ? std::string() : *pstrText;
}

CDiskPath PathOf(const CDiskPath* pPath) { return pPath == nullptr ? CDiskPath() : *pPath; }

// Logs with the format, which takes the path and the error's words, if it fails.
void SetAttributes(const std::string& strPath, NSDictionary* attributes, NSString* strFormat)
{
    NSError* error = nil;
    NSString* strItem = PathFromText(strPath.c_str());
    if (strItem == nil || ![[NSFileManager defaultManager] setAttributes:attributes
                                                            ofItemAtPath:strItem
                                                                   error:&error])
        NSLog(strFormat, strItem, [error localizedDescription]);
}

} // namespace

CFileName::CFileName() {}

CFileName::CFileName(const CFileName& other) : m_strName(other.m_strName), m_path(other.m_path) {}

CFileName::CFileName(const std::string* pstrPath) { Split(TextOf(pstrPath)); }

CFileName::CFileName(const char* pszPath) { Split(TextOf(pszPath)); }

CFileName::CFileName(const __CFString* strPath) { Split(TextOfCFString(strPath)); }

CFileName::CFileName(CDiskPath* pPath, const std::string* pstrName)
    : m_strName(TextOf(pstrName)), m_path(PathOf(pPath))
{
}

CFileName::CFileName(CDiskPath* pPath, const char* pszName)
    : m_strName(TextOf(pszName)), m_path(PathOf(pPath))
{
}

CFileName::CFileName(CDiskPath* pPath, const __CFString* strName)
    : m_strName(TextOfCFString(strName)), m_path(PathOf(pPath))
{
}

void CFileName::operator=(const CFileName& other)
{
    m_strName = other.m_strName;
    m_path = other.m_path;
}

bool CFileName::operator==(const CFileName& other) const
{
    return m_path == other.m_path && m_strName == other.m_strName;
}

bool CFileName::Empty() const { return m_strName.empty() && m_path.Empty(); }

std::string CFileName::GetFullPath() const
{
    std::string strPath = m_path.GetFullPathString();
    if (!strPath.empty() && strPath.back() != '/')
        strPath += '/';
    return strPath + m_strName;
}

std::string CFileName::GetFullPathString() const { return GetFullPath(); }

__CFString* CFileName::GetFullPathCFString() const { return NewCFString(GetFullPath()); }

__CFString* CFileName::GetNameCFString() const { return NewCFString(m_strName); }

std::string CFileName::GetExtension() { return ::GetExtension(&m_strName); }

std::string CFileName::GetURL()
{
    std::string strURL = "url:file://localhost/";
    for (char ch : m_path.GetFullPathString() + '\\' + m_strName)
    {
        if (ch != ':')
            strURL += ch == '\\' ? '/' : ch;
    }
    return strURL;
}

void CFileName::Clean()
{
    std::string strClean;
    for (char ch : m_strName)
        strClean += kNotInNames.find(ch) == std::string_view::npos ? ch : '_';
    m_strName = strClean;
}

bool CFileName::Exists()
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const bool fExists = AttributesOfItem(GetFullPath()) != nil;
    [pool drain];
    return fExists;
}

int CFileName::FileDelete()
{
    const std::string strPath = GetFullPath();
    if (!strPath.empty())
        std::remove(strPath.c_str());
    return 0;
}

bool CFileName::RenameFile(const char* pszNewPath)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSString* strOld = PathFromText(GetFullPath().c_str());
    NSString* strNew = PathFromText(pszNewPath);
    NSError* error = nil;
    const bool fMoved = strOld != nil && strNew != nil &&
                        [[NSFileManager defaultManager] moveItemAtPath:strOld
                                                                toPath:strNew
                                                                 error:&error];
    if (!fMoved)
        NSLog(@"MoveFiles: %@ - %@", strOld, [error localizedDescription]);
    [pool drain];
    return fMoved;
}

void CFileName::SetCreatorType(unsigned long nCreator, unsigned long nType)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSDictionary* attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSNumber numberWithUnsignedLong:nCreator],
                                     NSFileHFSCreatorCode, [NSNumber numberWithUnsignedLong:nType],
                                     NSFileHFSTypeCode, nil];
    SetAttributes(GetFullPath(), attributes, @"SetCreatorType: %@ - %@");
    [pool drain];
}

double CFileName::GetModificationDateTime()
{
    double dSeconds = 0.0;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSDictionary* attributes = AttributesOfItem(GetFullPath());
    if (attributes != nil)
    {
        NSDate* date = [[attributes fileModificationDate] retain];
        dSeconds = [date timeIntervalSince1970];
        [date release];
    }
    [pool drain];
    return dSeconds;
}

void CFileName::SetModificationDateTime(double dSeconds)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSDictionary* attributes =
        [NSDictionary dictionaryWithObjectsAndKeys:[NSDate dateWithTimeIntervalSince1970:dSeconds],
                                                   NSFileModificationDate, nil];
    SetAttributes(GetFullPath(), attributes, @"SetModificationDateTime: %@ - %@");
    [pool drain];
}

CFileName CFileName::MakeTemporaryFileName()
{
    CFileName file;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const std::unique_ptr<char[]> pszTemplate = TemporaryTemplate(@"Tarvane.XXXXXX");
    const int nDescriptor = mkstemp(pszTemplate.get());
    if (nDescriptor != -1)
    {
        close(nDescriptor);
        file = CFileName(pszTemplate.get());
    }
    [pool drain];
    return file;
}

void CFileName::Split(const std::string& strPath)
{
    const std::string::size_type nSlash = strPath.rfind('/');
    if (nSlash == std::string::npos)
    {
        m_strName = strPath;
        return;
    }
    const std::string strDirectory = strPath.substr(0, nSlash);
    m_path.Set(&strDirectory);
    m_strName = strPath.substr(nSlash + 1);
}
