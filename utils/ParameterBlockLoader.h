#pragma once

#include "utils/ParameterBlock.h"
#include "utils/ParameterPool.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// One load of a flat block into an empty CParameterBlock, with all that is nested in it. What
/// comes from the buffer can make it neither read outside the buffer, nor recurse, nor take more
/// memory than in proportion to the buffer: a stated count is never trusted with an allocation.
class CParameterBlockLoader
{
public:
    CParameterBlockLoader(CParameterBlock& root, const std::vector<std::string>* pNames,
                          unsigned long nSize, const unsigned char* pSource);
    CParameterBlockLoader(const CParameterBlockLoader&) = delete;
    CParameterBlockLoader& operator=(const CParameterBlockLoader&) = delete;
    ~CParameterBlockLoader();

    /// The bytes consumed, or -1; the root then keeps what it has got so far. To be called once.
    long Load();

private:
    /// A block whose entries are being read. Finished entries wait in m_entries, so that each list
    /// is made once, in its right size.
    struct Level
    {
        CParameterBlock* pBlock;
        std::size_t nFirstEntry;
        std::uint32_t nToRead;
        std::uint32_t nRemainingBefore;
    };

    bool LoadEntry();
    template <class Parameter> bool LoadValue();
    void BeginBlock();
    bool FinishBlock();
    void FinishRoot(std::size_t nEntries);

    std::uint32_t LoadName(CParameter& parameter);
    std::uint32_t LoadCount();
    void Advance(std::uint32_t nBytes);

    CParameterBlock& m_root;
    const std::vector<std::string>* m_pNames;
    std::vector<CByteString> m_sharedNames;
    const unsigned char* m_pNext;
    const unsigned long m_nSize;
    std::uint32_t m_nRemaining; ///< To the end of the buffer, on every level.
    CParameterPool m_pool;
    std::vector<Level> m_levels;
    std::vector<CParameter*> m_entries;
};
