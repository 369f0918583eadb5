#pragma once

#include "utils/ParameterBlock.h"

#include <type_traits>
#include <vector>

inline bool IsBlock(const CParameter& parameter)
{
    return parameter.m_nType == CParameterBlock::kType;
}

/// Calls visit(CParameter&) for every parameter below a block, each block before its contents, null
/// entries left out. A visit that returns a bool is asked whether to go into the block that it was
/// given. It may change what it is given, but not the shape of the tree. What is still to be done
/// lies on the heap, and a chain of only children needs none of it.
template <typename Visit> void WalkParameters(const CParameterBlock& root, Visit&& visit)
{
    struct Rest
    {
        explicit Rest(const CParameterBlock& block)
            : pNext(block.m_vParameters.begin()), pEnd(block.m_vParameters.end())
        {
        }
        CParameterList::const_iterator pNext;
        CParameterList::const_iterator pEnd;
    };
    std::vector<Rest> waiting;
    Rest rest(root);
    for (;;)
    {
        if (rest.pNext == rest.pEnd)
        {
            if (waiting.empty())
                return;
            rest = waiting.back();
            waiting.pop_back();
            continue;
        }
        CParameter* pEntry = *rest.pNext++;
        if (!pEntry)
            continue;
        if constexpr (std::is_void_v<decltype(visit(*pEntry))>)
        {
            visit(*pEntry);
            if (!IsBlock(*pEntry))
                continue;
        }
        else if (!visit(*pEntry))
            continue;
        if (rest.pNext != rest.pEnd)
            waiting.push_back(rest);
        rest = Rest(static_cast<const CParameterBlock&>(*pEntry));
    }
}
