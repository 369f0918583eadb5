#include "apps/session/SessionScan.h"

#include "apps/session/EntryPath.h"
#include "apps/session/EntryText.h"
#include "utils/ParameterBlock.h"
#include "utils/ParameterFormat.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace Tarvane::Session
{

namespace
{

constexpr std::size_t kHeaderSize = 38;
constexpr std::size_t kSmallestRecord = 6; // tag, token and a bool

class CScanner
{
public:
    CScanner(std::string_view bytes, const ScanProgress& progress)
        : m_bytes(bytes), m_progress(progress)
    {
    }

    ScannedSession Run()
    {
        if (ScanHeader())
        {
            m_session.statistics.uses.assign(m_session.names.size(), 0);
            ScanRecords();
        }
        return std::move(m_session);
    }

private:
    struct Level
    {
        std::uint32_t nLeft;     // children still to come
        std::size_t nFirstToken; // where the tokens of its children begin in m_tokens
    };

    bool Fail(std::size_t nOffset, std::string strReason)
    {
        m_session.flaw = Flaw{nOffset, std::move(strReason), {}};
        return false;
    }
    bool FailInRecord(std::size_t nOffset, std::string strReason)
    {
        m_session.flaw = Flaw{nOffset, std::move(strReason), PathThrough(m_levels.size())};
        return false;
    }
    // Before the name of an entry is known, its flaw counts for the block that holds it.
    bool FailInBlock(std::size_t nOffset, std::string strReason)
    {
        const std::size_t nAbove = m_levels.empty() ? 0 : m_levels.size() - 1;
        m_session.flaw = Flaw{nOffset, std::move(strReason), PathThrough(nAbove)};
        return false;
    }

    std::size_t Left() const { return m_bytes.size() - m_nAt; }
    std::uint32_t U32(std::size_t nOffset) const
    {
        return ParameterFormat::Read<std::uint32_t>(
            reinterpret_cast<const unsigned char*>(m_bytes.data()) + nOffset);
    }

    bool ScanHeader()
    {
        const std::string& strMagic = CParameterBlock::m_strBinaryHeader;
        const auto nSame = static_cast<std::size_t>(
            std::mismatch(strMagic.begin(), strMagic.end(), m_bytes.begin(), m_bytes.end()).first -
            strMagic.begin());
        if (nSame < strMagic.size())
            return Fail(nSame, "it does not begin with \"" + strMagic + "\"");
        if (m_bytes.size() <= kHeaderSize)
            return Fail(m_bytes.size(), "it ends within the header, which takes 38 bytes");
        if (m_bytes[25] != '\0')
            return Fail(25, "the byte behind the magic text is not 0");
        if (U32(26) != 100)
            return Fail(26, "the version is " + std::to_string(U32(26)) + " and not 100");
        return ScanNames(U32(30), U32(34));
    }

    bool ScanNames(std::size_t nTableSize, std::size_t nNames)
    {
        if (m_bytes.size() - kHeaderSize <= nTableSize)
            return Fail(30, "the name table claims " + std::to_string(nTableSize) +
                                " bytes, which reach the end of the file");
        const std::string_view table = m_bytes.substr(kHeaderSize, nTableSize);
        std::unordered_set<std::string_view> known;
        m_session.names.emplace_back();
        for (std::size_t nAt = 0; nAt < nTableSize;)
        {
            const std::size_t nEnd = table.find('\0', nAt);
            const std::size_t nOffset = kHeaderSize + nAt;
            if (nEnd == std::string_view::npos)
                return Fail(nOffset, "the last name of the table has no end");
            const std::string_view name = table.substr(nAt, nEnd - nAt);
            if (name.empty())
                return Fail(nOffset, "a name in the table is empty");
            if (!known.insert(name).second)
                return Fail(nOffset, "the name \"" + PrintableText(name, "\"") +
                                         "\" stands twice in the table");
            m_session.names.emplace_back(name);
            nAt = nEnd + 1;
        }
        if (m_session.names.size() - 1 != nNames)
            return Fail(34, "the table holds " + std::to_string(m_session.names.size() - 1) +
                                " names and not " + std::to_string(nNames));
        m_nAt = m_session.nRootOffset = kHeaderSize + nTableSize;
        return true;
    }

    void ScanRecords()
    {
        if (!ScanRecord(CParameterBlock::kType, m_nAt))
            return;
        while (!m_levels.empty())
        {
            if (m_levels.back().nLeft == 0)
                LeaveBlock();
            else if (!ScanEntry())
                return;
        }
        if (Left() > 0)
            Fail(m_nAt, std::to_string(Left()) + " bytes stand behind the last record");
    }

    void LeaveBlock()
    {
        m_tokens.resize(m_levels.back().nFirstToken);
        m_levels.pop_back();
        if (!std::exchange(m_fInDeepest, false))
            return;
        m_session.statistics.nDeepest = m_levels.size();
        m_session.statistics.strDeepestPath = PathThrough(m_levels.size());
    }

    bool ScanEntry()
    {
        --m_levels.back().nLeft;
        const std::size_t nStart = m_nAt;
        if (Left() < 4)
            return FailInBlock(nStart, "the file ends where a type tag is due");
        const std::uint32_t nTag = U32(nStart);
        if (nTag < 1 || nTag > 9)
            return FailInBlock(nStart, std::to_string(nTag) + " is no type tag");
        m_nAt += 4;
        return ScanRecord(static_cast<int>(nTag), nStart);
    }

    bool ScanRecord(int nType, std::size_t nStart)
    {
        std::uint32_t nToken = 0;
        if (!ScanToken(nToken))
            return false;
        // The root's own name is no step of a path.
        if (!m_levels.empty())
            m_tokens.push_back(nToken);
        if (!ScanPayload(nType))
            return false;
        Count(nType, nToken, nStart);
        if (m_progress)
            m_progress(m_nAt);
        return true;
    }

    bool ScanToken(std::uint32_t& nToken)
    {
        int nRead = 0;
        const unsigned int nUsed = ParameterFormat::ReadToken(
            reinterpret_cast<const unsigned char*>(m_bytes.data()) + m_nAt,
            static_cast<unsigned int>(Left()), nRead);
        if (nUsed == 0)
            return FailInBlock(m_nAt, "the file ends within a name field");
        nToken = static_cast<std::uint32_t>(nRead);
        if (nToken >= m_session.names.size())
            return FailInBlock(m_nAt, "there is no name " + std::to_string(nToken) +
                                          "; the table has " +
                                          std::to_string(m_session.names.size() - 1));
        m_nAt += nUsed;
        return true;
    }

    bool ScanPayload(int nType)
    {
        static constexpr std::size_t sizes[] = {0, 4, 4, 8, 8, 8 + sizeof(long), 4, 1, 4, 8};
        const std::size_t nSize = sizes[nType];
        if (Left() < nSize)
            return FailInRecord(m_nAt,
                                std::string("the file ends within ") +
                                    (nType == CParameterBlock::kType ? "a block's count"
                                     : nType == CStringParameter::kType
                                         ? "a string's length"
                                         : std::string("a value of type ") + TypeName(nType)));
        const std::size_t nPayload = m_nAt;
        m_nAt += nSize;
        switch (nType)
        {
        case CStringParameter::kType:
            return ScanText(nPayload);
        case CParameterBlock::kType:
            return ScanCount(nPayload);
        case CBoolParameter::kType:
            return static_cast<unsigned char>(m_bytes[nPayload]) <= 1 ||
                   FailInRecord(nPayload, "a bool is neither 0 nor 1");
        default:
            return true;
        }
    }

    bool ScanText(std::size_t nPayload)
    {
        const std::uint32_t nLength = U32(nPayload);
        if (nLength > Left())
            return FailInRecord(nPayload, "a string claims " + std::to_string(nLength) +
                                              " bytes, " + std::to_string(Left()) + " are left");
        m_nAt += nLength;
        return true;
    }

    bool ScanCount(std::size_t nPayload)
    {
        const std::uint32_t nCount = U32(nPayload);
        if (nCount > Left() / kSmallestRecord)
            return FailInRecord(nPayload, "a block claims " + std::to_string(nCount) +
                                              " entries, more than the file has room for");
        m_levels.push_back({nCount, m_tokens.size()});
        Statistics& statistics = m_session.statistics;
        if (m_levels.size() - 1 > statistics.nDeepest)
            m_fInDeepest = true;
        statistics.nMostChildren = std::max<std::size_t>(statistics.nMostChildren, nCount);
        return true;
    }

    void Count(int nType, std::uint32_t nToken, std::size_t nStart)
    {
        Statistics& statistics = m_session.statistics;
        ++statistics.count[nType];
        statistics.bytes[nType] += m_nAt - nStart;
        ++statistics.uses[nToken];
    }

    // From the root through the newest entry on each of the first nLevels levels.
    std::string PathThrough(std::size_t nLevels) const
    {
        std::vector<PathStep> steps;
        for (std::size_t i = 0; i < nLevels; ++i)
        {
            const std::size_t nFirst = m_levels[i].nFirstToken;
            const std::size_t nEnd =
                i + 1 < m_levels.size() ? m_levels[i + 1].nFirstToken : m_tokens.size();
            if (nFirst == nEnd)
                break;
            const std::uint32_t nToken = m_tokens[nEnd - 1];
            const auto nBefore =
                std::count(m_tokens.begin() + static_cast<std::ptrdiff_t>(nFirst),
                           m_tokens.begin() + static_cast<std::ptrdiff_t>(nEnd - 1), nToken);
            steps.push_back({m_session.names[nToken], static_cast<std::size_t>(nBefore)});
        }
        return FormatPath(steps);
    }

    const std::string_view m_bytes;
    const ScanProgress& m_progress;
    std::size_t m_nAt = 0;
    ScannedSession m_session;
    std::vector<Level> m_levels;
    std::vector<std::uint32_t> m_tokens; // of the entries so far, on every open level
    bool m_fInDeepest = false;           // the innermost block is deeper than any before
};

} // namespace

ScannedSession Scan(std::string_view bytes, const ScanProgress& progress)
{
    return CScanner(bytes, progress).Run();
}

std::string FlawText(const Flaw& flaw)
{
    std::string text = "offset " + std::to_string(flaw.nOffset) + ": " + flaw.strReason;
    if (!flaw.strPath.empty())
        text += ", in " + flaw.strPath;
    return text;
}

} // namespace Tarvane::Session
