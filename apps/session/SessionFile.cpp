#include "apps/session/SessionFile.h"

#include "apps/server/AtomicFile.h"
#include "apps/session/SessionScan.h"
#include "apps/support/CommandLine.h"
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

/// Says how far a load is, in steps of ten percent.
class CAnnouncer : public CProgress
{
public:
    CAnnouncer(std::string strFile, unsigned long nTotal)
        : m_strFile(std::move(strFile)), m_nTotal(nTotal)
    {
    }

    bool Update(unsigned long nBytes) override
    {
        const unsigned long nPercent = nBytes * 100 / m_nTotal;
        if (nPercent < m_nNext)
            return false;
        std::cerr << m_strFile << ": " << nPercent << " % read" << std::endl;
        m_nNext = nPercent - nPercent % kPercentStep + kPercentStep;
        return false;
    }

private:
    std::string m_strFile;
    unsigned long m_nTotal;
    unsigned long m_nNext = 0;
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
        return Server::ReadFile(path, std::numeric_limits<unsigned int>::max());
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

LoadedSession LoadSession(const std::filesystem::path& path)
{
    std::string bytes = ReadSessionBytes(path);
    if (bytes.empty())
        throw CUsageError(path.string() + " is empty, and no session.");
    CAnnouncer announcer(path.string(), bytes.size());
    CProgress* pProgress = bytes.size() > kAnnouncedSize ? &announcer : nullptr;
    LoadedSession session{std::make_unique<CParameterBlock>(pProgress, bytes.size()), true};
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
        Server::ReplaceFile(path, {pBytes, nSize});
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

} // namespace Tarvane::Session
