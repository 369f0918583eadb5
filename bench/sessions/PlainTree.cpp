#include "bench/sessions/PlainTree.h"

#include <type_traits>
#include <utility>

namespace Bench
{

namespace
{

PlainNode* BuildEntry(const CParameter& parameter)
{
    auto* pNode = new PlainNode;
    pNode->strName = parameter.m_strName.str();
    switch (parameter.m_nType)
    {
    case CStringParameter::kType:
        pNode->value = static_cast<const CStringParameter&>(parameter).m_strValue.str();
        break;
    case CIntParameter::kType:
        pNode->value = static_cast<const CIntParameter&>(parameter).m_nValue;
        break;
    case CDoubleParameter::kType:
        pNode->value = static_cast<const CDoubleParameter&>(parameter).m_dValue;
        break;
    case CUInt64Parameter::kType:
        pNode->value = static_cast<const CUInt64Parameter&>(parameter).m_nValue;
        break;
    case CBoolParameter::kType:
        pNode->value = static_cast<const CBoolParameter&>(parameter).m_bValue;
        break;
    case CFloatParameter::kType:
        pNode->value = static_cast<const CFloatParameter&>(parameter).m_fValue;
        break;
    case CSInt64Parameter::kType:
        pNode->value = static_cast<const CSInt64Parameter&>(parameter).m_nValue;
        break;
    default:
        pNode->fBlock = true;
    }
    return pNode;
}

struct Weigh
{
    double operator()(const std::string& text) const { return static_cast<double>(text.size()); }
    template <typename T> double operator()(T value) const { return static_cast<double>(value); }
};

} // namespace

PlainNode* BuildPlain(const CParameterBlock& block)
{
    PlainNode* pTop = BuildEntry(block);
    std::vector<std::pair<const CParameterBlock*, PlainNode*>> open{{&block, pTop}};
    while (!open.empty())
    {
        const auto [pBlock, pNode] = open.back();
        open.pop_back();
        for (const CParameter* pEntry : pBlock->m_vParameters)
        {
            pNode->children.push_back(BuildEntry(*pEntry));
            if (pEntry->m_nType == CParameterBlock::kType)
                open.emplace_back(static_cast<const CParameterBlock*>(pEntry),
                                  pNode->children.back());
        }
    }
    return pTop;
}

PlainNode* BuildPlain(const BuiltShape& shape)
{
    const auto add = [](PlainNode& parent, const char* pName)
    {
        parent.children.push_back(new PlainNode);
        parent.children.back()->strName = pName;
        return parent.children.back();
    };
    const auto fill = [&](PlainNode& track, int nTrack)
    {
        AddValues(nTrack, shape,
                  [&](const char* pName, const auto& value)
                  {
                      if constexpr (std::is_same_v<decltype(value), const char* const&>)
                          add(track, pName)->value = std::string(value);
                      else
                          add(track, pName)->value = value;
                  });
    };
    auto* pTop = new PlainNode;
    if (shape.nTracks == 0)
        fill(*pTop, 0);
    for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
    {
        PlainNode* pTrack = add(*pTop, "Track");
        pTrack->fBlock = true;
        fill(*pTrack, nTrack);
    }
    return pTop;
}

void Free(PlainNode* pNode)
{
    std::vector<PlainNode*> open{pNode};
    while (!open.empty())
    {
        PlainNode* pNext = open.back();
        open.pop_back();
        for (PlainNode* pChild : pNext->children)
        {
            if (pChild->fBlock)
                open.push_back(pChild);
            else
                delete pChild;
        }
        delete pNext;
    }
}

double Walk(const PlainNode& node)
{
    double dSum = 0;
    std::vector<const PlainNode*> open{&node};
    while (!open.empty())
    {
        const PlainNode* pNode = open.back();
        open.pop_back();
        for (const PlainNode* pChild : pNode->children)
        {
            if (pChild->fBlock)
                open.push_back(pChild);
            else
                dSum += std::visit(Weigh(), pChild->value) +
                        static_cast<double>(pChild->strName.size());
        }
    }
    return dSum;
}

} // namespace Bench
