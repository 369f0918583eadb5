#include "colours/ComponentsColors.h"

#include "colours/GradientFill.h"
#include "utils/ParameterBlock.h"

#include <memory>
#include <typeinfo>

CComponentsColors gAppColours;
int gnAppStyle = 1;

namespace
{
std::unique_ptr<CComponentColour> MakeEntry(int nType)
{
    constexpr CComponentCode kNoCode(0, 0);
    switch (nType)
    {
    case CComponentColour::kTypeColour:
        return std::make_unique<CComponentColour>(kNoCode);
    case CComponentColour::kTypeGradient:
        return std::make_unique<CGradientFill>(kNoCode);
    default:
        return nullptr;
    }
}
} // namespace

CComponentsColors::~CComponentsColors() { Clear(); }

CComponentColour* CComponentsColors::Find(CComponentCode code)
{
    const auto found = m_Map.find(code.Key());
    return found == m_Map.end() ? nullptr : found->second;
}

bool CComponentsColors::IsGradient(CComponentCode code)
{
    const CComponentColour* pEntry = Find(code);
    // Asked at every fill: the type tells most flat colours without the far longer cast.
    return pEntry && typeid(*pEntry) != typeid(CComponentColour) &&
           dynamic_cast<const CGradientFill*>(pEntry);
}

CGColorRef CComponentsColors::FindCGColorRef(CComponentCode code)
{
    const CComponentColour* pEntry = Find(code);
    return pEntry ? pEntry->m_refColor : nullptr;
}

NSColor* CComponentsColors::FindNSColor(CComponentCode code)
{
    const CComponentColour* pEntry = Find(code);
    return pEntry ? pEntry->m_pNSColor : nil;
}

const CGFloat* CComponentsColors::FindRGBA(CComponentCode code)
{
    const CComponentColour* pEntry = Find(code);
    return pEntry ? &pEntry->m_dRed : nullptr;
}

void CComponentsColors::UpdateColour(CComponentCode code, float fRed, float fGreen, float fBlue,
                                     float fAlpha)
{
    if (CComponentColour* pEntry = Find(code))
        pEntry->UpdateColour(fRed, fGreen, fBlue, fAlpha);
}

void CComponentsColors::Add(CComponentColour* pColour)
{
    CComponentColour*& pEntry = m_Map[pColour->m_Code.Key()];
    delete pEntry;
    pEntry = pColour;
}

void CComponentsColors::Clear()
{
    for (const auto& [nKey, pEntry] : m_Map)
        delete pEntry;
    m_Map.clear();
}

void CComponentsColors::Save(CParameterBlock* pBlock)
{
    CParameterBlock list;
    for (const auto& [nKey, pEntry] : m_Map)
    {
        CParameterBlock entry;
        pEntry->Save(&entry);
        list.AddParameter(CComponentColour::szComponent, &entry);
    }
    pBlock->AddParameter(CComponentColour::szComponents, &list);
}

bool CComponentsColors::Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace)
{
    CParameterBlock* pList = nullptr;
    if (!pBlock->FindParameter(CComponentColour::szComponents, &pList))
        return false;

    bool fResult = true;
    CParameterBlock* pEntryBlock = nullptr;
    CParameterBlock::iterator position;
    bool fMore = pList->FindFirstParameter(CComponentColour::szComponent, &pEntryBlock, &position);
    while (fMore)
    {
        int nType = 0;
        pEntryBlock->FindParameter(CComponentColour::szType, &nType, CComponentColour::kTypeColour);
        std::unique_ptr<CComponentColour> pEntry = MakeEntry(nType);
        // The last entry alone decides the result.
        fResult = pEntry && pEntry->Load(pEntryBlock, pSpace);
        if (fResult)
            Add(pEntry.release());
        fMore = pList->FindNextParameter(CComponentColour::szComponent, &pEntryBlock, &position);
    }
    return fResult;
}
