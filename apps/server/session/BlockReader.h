// A parameter block read strictly: everything that is asked for must be there, and everything that
// is there must have been asked for.
#pragma once

#include "apps/server/session/SessionFlaw.h"
#include "utils/ParameterBlock.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tarvane::Server
{

/// Reads one block, which outlives the reader. All operations throw CSessionFlaw with the place in
/// the tree and what is wrong there.
class CBlockReader
{
public:
    explicit CBlockReader(CParameterBlock& root) : m_block(root) {}
    CBlockReader(const CBlockReader&) = delete;
    CBlockReader& operator=(const CBlockReader&) = delete;

    int Int(const char* szName) { return Value<int>(szName, "int"); }
    std::int64_t Int64(const char* szName) { return Value<long long>(szName, "int64"); }
    double Double(const char* szName) { return Value<double>(szName, "double"); }
    bool Flag(const char* szName) { return Value<bool>(szName, "bool"); }
    std::string Text(const char* szName);

    /// What read(CBlockReader&) makes of the one nested block of the name.
    template <typename Read> auto Block(const char* szName, Read&& read)
    {
        CParameterBlock* pNested = nullptr;
        if (!m_block.FindParameter(szName, &pNested))
            FailMissing("block", szName);
        return ReadNested(*pNested, szName, 0, read);
    }

    /// What read(CBlockReader&) makes of each nested block of the name, in their order.
    template <typename Read> auto Blocks(const char* szName, Read&& read)
    {
        std::vector<decltype(read(*this))> all;
        CParameterBlock* pNested = nullptr;
        CParameterBlock::iterator it;
        for (bool fFound = m_block.FindFirstParameter(szName, &pNested, &it); fFound;
             fFound = m_block.FindNextParameter(szName, &pNested, &it))
            all.push_back(ReadNested(*pNested, szName, all.size(), read));
        return all;
    }

    /// The values of a nested block that holds nothing but values of the name.
    std::vector<std::int32_t> Ints(const char* szBlock, const char* szName);
    std::vector<std::int64_t> Int64s(const char* szBlock, const char* szName);

    /// The last operation on a reader.
    void RequireAllRead() const;

private:
    CBlockReader(CParameterBlock& block, const CBlockReader& above, const char* szName,
                 std::size_t nIndex)
        : m_block(block), m_pAbove(&above), m_szName(szName), m_nIndex(nIndex)
    {
    }

    template <typename T> T Value(const char* szName, const char* szType)
    {
        T value{};
        if (!m_block.FindParameter(szName, &value, T{}))
            FailMissing(szType, szName);
        ++m_nRead;
        return value;
    }

    template <typename Read>
    auto ReadNested(CParameterBlock& nested, const char* szName, std::size_t nIndex, Read& read)
    {
        ++m_nRead;
        CBlockReader reader(nested, *this, szName, nIndex);
        auto result = read(reader);
        reader.RequireAllRead();
        return result;
    }

    template <class Parameter, typename T>
    std::vector<T> Values(const char* szBlock, const char* szName);

    std::string Place() const;
    [[noreturn]] void FailMissing(const char* szType, const char* szName) const;

    CParameterBlock& m_block;
    const CBlockReader* m_pAbove = nullptr;
    const char* m_szName = "";
    std::size_t m_nIndex = 0;
    std::size_t m_nRead = 0; ///< entries of the block
};

} // namespace Tarvane::Server
