#pragma once

#include "fuzz/Require.h"
#include "utils/ParameterBlock.h"
#include "utils/ParameterWalk.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The input in memory of its own, which the loading operations take without const.
inline std::vector<unsigned char> CopyOf(const std::uint8_t* pBytes, std::size_t nSize)
{
    return {pBytes, pBytes + nSize};
}

inline bool HoldsFileId(const CParameterBlock& block)
{
    bool fHolds = false;
    WalkParameters(block, [&fHolds](const CParameter& parameter)
                   { fHolds = fHolds || parameter.m_nType == CFileIdTypeParameter::kType; });
    return fHolds;
}

inline std::string Flat(const CParameterBlock& block)
{
    unsigned long nSize = 0;
    unsigned char* pBytes = block.CreateBlock(&nSize);
    std::string flat(reinterpret_cast<char*>(pBytes), nSize);
    delete[] pBytes;
    return flat;
}

/// What can be done with any tree, whatever it was read from.
inline void UseTree(CParameterBlock& block)
{
    CParameterBlock copy;
    copy.CopyParameters(&block);
    std::string text;
    block.FindParameter("Name", &text, nullptr);
    CParameterBlock* pNested = nullptr;
    CParameterBlock::iterator it;
    if (block.FindFirstParameter("B", &pNested, &it))
        block.FindNextParameter("B", &pNested, &it);
    if (!HoldsFileId(block))
        Require(Flat(block).size() + block.GetSizeOfName() == block.GetSize());
}
