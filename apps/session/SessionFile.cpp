#include "apps/session/SessionFile.h"

#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"
#include "utils/ParameterWalk.h"

#include <CoreFoundation/CoreFoundation.h>

#include <iostream>
#include <limits>
#include <system_error>

namespace Tarvane::Session
{

namespace
{

constexpr unsigned long kAnnouncedSize = 50ul * 1000 * 1000;
constexpr unsigned long kPercentStep = 10;

// Says how far a large file has been read, in steps of ten percent, from 0 on.
class CAnnouncer : public CProgress
{
public:
    CAnnouncer(std::string strFile, unsigned long nTotal)
        : m_strFile(std::move(strFile)), m_nTotal(nTotal)
    {
        Update(0);
    }

    bool Update(unsigned long nBytes) override
    {
        if (nBytes < m_nNextBytes || m_nTotal <= kAnnouncedSize)
            return false;
        const unsigned long nPercent = nBytes * 100 / m_nTotal / kPercentStep * kPercentStep;
        std::cerr << m_strFile << ": " << nPercent << " % read" << std::endl;
        m_nNextBytes = (nPercent + kPercentStep) * m_nTotal / 100;
        return false;
    }

private:
    std::string m_strFile;
    unsigned long m_nTotal;
    unsigned long m_nNextBytes = 0;
};

struct DataReleaser
{
    void operator()(CFMutableDataRef pData) const { CFRelease(pData); }
};
using Data = std::unique_ptr<std::remove_pointer_t<CFMutableDataRef>, DataReleaser>;

void RefuseFileIds(const CParameterBlock& root)
{
    WalkParameters(root,
                   [](const CParameter& parameter)
                   {
                       if (parameter.m_nType == CFileIdTypeParameter::kType)
                           throw CUsageError(
                               "the tree holds the file id \"" + parameter.m_strName.str() +
                               "\"; file ids can be read but not written. Nothing was written.");
                   });
}

} // namespace

std::string ReadSessionBytes(const std::filesystem::path& path)
{
    try
    {
        return ReadFile(path, std::numeric_limits<unsigned int>::max());
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

ScannedSession ScanAnnounced(const std::filesystem::path& path, std::string_view bytes)
{
    CAnnouncer announcer(path.string(), bytes.size());
    return Scan(bytes, [&announcer](std::size_t nBytes) { announcer.Update(nBytes); });
}

LoadedSession LoadSession(const std::filesystem::path& path)
{
    std::string bytes = ReadSessionBytes(path);
    if (bytes.empty())
        throw CUsageError(path.string() + " is empty, and no session.");
    CAnnouncer announcer(path.string(), bytes.size());
    LoadedSession session{std::make_unique<CParameterBlock>(&announcer, bytes.size()), true};
    const int nResult = session.pRoot->LoadBinarySessionFromMemory(
        reinterpret_cast<unsigned char*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    if (nResult == CParameterBlock::kSessionBadHeader)
        throw CUsageError(path.string() + " is no session: " + Scan(bytes).flaw->strReason + ".");
    session.fWhole = nResult == CParameterBlock::kSessionDone;
    return session;
}

void SaveSession(CParameterBlock& root, const std::filesystem::path& path)
{
    RefuseFileIds(root);
    const Data pData(CFDataCreateMutable(kCFAllocatorDefault, 0));
    const unsigned long nSize = root.SaveBinarySessionToMemory(pData.get());
    if (nSize == 0)
        throw CUsageError("a session needs at least one name; nothing was written.");
    const auto* pBytes = reinterpret_cast<const char*>(CFDataGetBytePtr(pData.get()));
    try
    {
        ReplaceFile(path, {pBytes, nSize});
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

} // namespace Tarvane::Session
