#include "utils/FileIO/FileExceptions.h"
#include "utils/FileIO/FileIO.h"
#include "utils/FileIO/FileName.h"
#include "utils/NameIndex.h"
#include "utils/ParameterBlock.h"
#include "utils/ParameterRecord.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <memory>
#include <new>
#include <type_traits>

using namespace ParameterFormat;

const std::string CParameterBlock::m_strBinaryHeader = "[TNE Binary Session File]";

namespace
{
constexpr std::uint32_t kFormatVersion = 100;
// The magic's terminator, the version, and size and count of the name table.
constexpr unsigned int kSizeOfHeaderFields = 13;
constexpr unsigned long kSpareBytes = 32;

struct CFReleaser
{
    void operator()(CFMutableDataRef pData) const { CFRelease(pData); }
};
using OwnedData = std::unique_ptr<std::remove_pointer_t<CFMutableDataRef>, CFReleaser>;

unsigned long GetSizeOfTable(const CParameterBlock::SessionNames& names)
{
    unsigned long nSize = 0;
    for (const auto& name : names)
        nSize += name.first.size() + 1;
    return nSize;
}

// Orders the names by use, gives each its place in that order as its token, and returns the order.
CParameterBlock::SessionNames AssignTokens(std::map<std::string, int>& map)
{
    CParameterBlock::SessionNames names(map.begin(), map.end());
    std::sort(names.begin(), names.end(), CParameterBlock::IntCmp);
    int nToken = 0;
    for (const auto& name : names)
        map[name.first] = ++nToken;
    return names;
}

// A save goes over the tree twice: first it counts the names and the bytes that do not depend on
// them, then it hands out the tokens and writes. Where a class derived outside takes part, its own
// GetSize and Save have the word, once the tokens are set.
class CSessionWriter
{
public:
    explicit CSessionWriter(CParameterBlock& root) : m_root(root)
    {
        CountRecord(root);
        WalkParameters(root,
                       [this](const CParameter& parameter)
                       {
                           CountRecord(parameter);
                           m_nSize += kSizeOfTag;
                       });
    }

    bool HasNames() const { return !m_map.empty(); }

    // Turns the counts into tokens.
    const CParameterBlock::SessionNames& OrderNames()
    {
        m_names = AssignTokens(m_map);
        int nToken = 0;
        for (const auto& name : m_names)
            m_nSize += GetSizeOfToken(++nToken) * static_cast<unsigned long>(name.second);
        return m_names;
    }

    // Whether SetTokensAndSave writes what Save would.
    bool WritesAll() const { return m_fOwnClassesAlone; }

    void SetTokens()
    {
        SetToken(m_root);
        WalkParameters(m_root, [this](CParameter& parameter) { SetToken(parameter); });
    }

    // What SetTokensAndSave will write.
    unsigned long GetSizeOfBody() const { return m_nSize; }

    unsigned char* SetTokensAndSave(unsigned char* pDest)
    {
        SetToken(m_root);
        pDest += m_root.SaveName(pDest);
        pDest += SaveCount(pDest, m_root);
        WalkParameters(m_root,
                       [this, &pDest](CParameter& parameter)
                       {
                           SetToken(parameter);
                           pDest = SaveOwnRecord(pDest, parameter);
                       });
        return pDest;
    }

private:
    void CountRecord(const CParameter& parameter)
    {
        m_fOwnClassesAlone &= IsOwnClass(parameter);
        m_nSize += GetSizeOfOwnPayload(parameter);
        const CByteString& strName = parameter.m_strName;
        if (strName.empty())
            m_nSize += GetSizeOfToken(0);
        else
            ++*m_index.Get(strName, [&] { return &m_map[strName.str()]; });
    }

    void SetToken(CParameter& parameter)
    {
        const CByteString& strName = parameter.m_strName;
        parameter.m_nToken =
            strName.empty() ? 0 : *m_index.Get(strName, [&] { return &m_map[strName.str()]; });
    }

    CParameterBlock& m_root;
    std::map<std::string, int> m_map;
    CNameIndex m_index;
    CParameterBlock::SessionNames m_names;
    unsigned long m_nSize = 0;
    bool m_fOwnClassesAlone = true;
};
} // namespace

bool CParameterBlock::IntCmp(const std::pair<std::string, int>& a,
                             const std::pair<std::string, int>& b)
{
    return a.second > b.second;
}

void CParameterBlock::TokenizeNames(std::map<std::string, int>& map) const
{
    CNameIndex index;
    WalkParameters(*this,
                   [&](const CParameter& parameter)
                   {
                       const CByteString& strName = parameter.m_strName;
                       if (!strName.empty())
                           ++*index.Get(strName, [&] { return &map[strName.str()]; });
                   });
}

void CParameterBlock::SetTokens(std::map<std::string, int>& map)
{
    CNameIndex index;
    WalkParameters(*this,
                   [&](CParameter& parameter)
                   {
                       const CByteString& strName = parameter.m_strName;
                       const auto find = [&]() -> int*
                       {
                           const auto it = map.find(strName.str());
                           return it == map.end() ? nullptr : &it->second;
                       };
                       const int* pToken = strName.empty() ? nullptr : index.Get(strName, find);
                       parameter.m_nToken = pToken ? *pToken : 0;
                   });
}

unsigned long CParameterBlock::GetSizeOfHeader(const SessionNames* pNames)
{
    return m_strBinaryHeader.size() + kSizeOfHeaderFields + (pNames ? GetSizeOfTable(*pNames) : 0);
}

unsigned long CParameterBlock::SaveHeader(unsigned long, const SessionNames* pNames,
                                          unsigned char* pDest)
{
    unsigned char* pNext = pDest;
    std::memcpy(pNext, m_strBinaryHeader.c_str(), m_strBinaryHeader.size() + 1);
    pNext += m_strBinaryHeader.size() + 1;
    pNext += Write<std::uint32_t>(pNext, kFormatVersion);
    pNext += Write(pNext, static_cast<std::uint32_t>(pNames ? GetSizeOfTable(*pNames) : 0));
    pNext += Write(pNext, static_cast<std::uint32_t>(pNames ? pNames->size() : 0));
    if (!pNames)
        return static_cast<unsigned long>(pNext - pDest);
    for (const auto& name : *pNames)
    {
        std::memcpy(pNext, name.first.c_str(), name.first.size() + 1);
        pNext += name.first.size() + 1;
    }
    return static_cast<unsigned long>(pNext - pDest);
}

unsigned int CParameterBlock::LoadHeader(unsigned int nSize, std::vector<std::string>* pNames,
                                         unsigned char* pSource)
{
    const auto nMagic = static_cast<unsigned int>(m_strBinaryHeader.size());
    // Neither the magic's terminator nor the version is looked at.
    const unsigned int nTable = nMagic + kSizeOfHeaderFields;
    if (nSize <= nTable || std::memcmp(pSource, m_strBinaryHeader.data(), nMagic) != 0)
        return kBadHeader;
    const auto nTableSize = Read<std::uint32_t>(pSource + nMagic + 5);
    const auto nNames = Read<std::uint32_t>(pSource + nMagic + 9);
    if (nSize - nTable <= nTableSize)
        return kBadHeader;

    pNames->emplace_back();
    if (nNames == 0)
        return nTable;
    const char* pText = reinterpret_cast<const char*>(pSource) + nTable;
    unsigned int nUsed = 0;
    unsigned int nGot = 0;
    // The stated size bounds the table; the root record begins behind the last name that is read.
    while (nGot < nNames && nUsed < nTableSize)
    {
        const std::string_view rest(pText + nUsed, nTableSize - nUsed);
        pNames->emplace_back(rest.substr(0, rest.find('\0')));
        nUsed += static_cast<unsigned int>(pNames->back().size()) + 1;
        ++nGot;
    }
    return nGot == nNames ? nTable + nUsed : kBadHeader;
}

unsigned long CParameterBlock::SaveBinarySessionToMemory(__CFData* pData)
{
    CSessionWriter writer(*this);
    if (!writer.HasNames())
        return 0;
    const SessionNames& names = writer.OrderNames();
    if (!writer.WritesAll())
        writer.SetTokens();
    const unsigned long nHeader = GetSizeOfHeader(&names);
    const unsigned long nBody = writer.WritesAll() ? writer.GetSizeOfBody() : GetSize();
    CFDataSetLength(pData, static_cast<CFIndex>(nHeader + nBody + kSpareBytes));
    unsigned char* pDest = CFDataGetMutableBytePtr(pData);
    if (!pDest)
    {
        writer.SetTokens();
        return 0;
    }
    // A data object that was longer before has its old bytes there.
    std::memset(pDest + nHeader + nBody, 0, kSpareBytes);
    SaveHeader(nHeader, &names, pDest);
    if (!writer.WritesAll())
        return nHeader + Save(nBody, pDest + nHeader);
    writer.SetTokensAndSave(pDest + nHeader);
    return nHeader + nBody;
}

int CParameterBlock::SaveBinarySession(CFileName* pFile)
{
    const OwnedData pData(CFDataCreateMutable(kCFAllocatorDefault, 0));
    const unsigned long nSize = SaveBinarySessionToMemory(pData.get());
    const unsigned char* pBytes = CFDataGetMutableBytePtr(pData.get());
    if (!pBytes || nSize == 0)
        return kSessionFileFailed;
    try
    {
        const auto pFileIO = std::make_unique<CFileIO>();
        pFileIO->Open(pFile, true, true);
        pFileIO->Write(nSize, pBytes);
        pFileIO->Close();
    }
    catch (const CCodeException&)
    {
        return kSessionFileFailed;
    }
    return kSessionDone;
}

int CParameterBlock::LoadBinarySession(CFileName* pFile)
{
    std::unique_ptr<unsigned char[]> pBytes;
    unsigned int nSize = 0;
    int nResult = kSessionDone;
    try
    {
        const auto pFileIO = std::make_unique<CFileIO>();
        pFileIO->Open(pFile, false, false);
        nSize = static_cast<unsigned int>(pFileIO->GetLength());
        if (nSize != 0)
        {
            pBytes.reset(new (std::nothrow) unsigned char[nSize]);
            if (!pBytes)
                nResult = kSessionNoMemory;
            else if (pFileIO->Read(nSize, pBytes.get()) != nSize)
                nResult = kSessionFileFailed;
        }
        pFileIO->Close();
    }
    catch (const CCodeException&)
    {
        return kSessionFileFailed;
    }
    return nResult == kSessionDone ? LoadBinarySessionFromMemory(pBytes.get(), nSize) : nResult;
}

int CParameterBlock::LoadBinarySessionFromMemory(unsigned char* pData, unsigned int nSize)
{
    if (nSize == 0 || !pData)
        return kSessionDone;
    std::vector<std::string> names;
    const unsigned int nRoot = LoadHeader(nSize, &names, pData);
    if (nRoot == kBadHeader)
        return kSessionBadHeader;
    const long nConsumed = Load(&names, nSize - nRoot, pData + nRoot);
    return static_cast<std::int32_t>(nConsumed) < 0 ? kSessionBadRecords : kSessionDone;
}
