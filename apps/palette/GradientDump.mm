#include "apps/palette/GradientDump.h"

#include "apps/palette/PaletteCodes.h"
#include "apps/support/program/CommandLine.h"
#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"

namespace Tarvane
{
namespace
{

// In rising order of the codes.
std::string GradientsOfThePalette()
{
    std::string strList;
    for (auto entry = gAppColours.m_Map.rbegin(); entry != gAppColours.m_Map.rend(); ++entry)
    {
        const CComponentCode code(entry->first);
        if (!gAppColours.IsGradient(code))
        {
            continue;
        }
        const std::string strName = NameOfCode(code);
        strList +=
            (strList.empty() ? "" : ", ") + (strName.empty() ? NumbersOfCode(code) : strName);
    }
    return strList;
}

} // namespace

void DumpGradient(const std::string& strCode)
{
    const CComponentCode code = ParseCode(strCode);
    CComponentColour* pEntry = gAppColours.Find(code);
    auto* pFill = dynamic_cast<CGradientFill*>(pEntry);
    if (pFill == nullptr)
    {
        throw CUsageError((pEntry != nullptr ? strCode + " (" + pEntry->m_strName +
                                                   ") is a flat colour and has no stops"
                                             : "the palette has no entry " + strCode) +
                          " - the gradients are " + GradientsOfThePalette() + ".");
    }
    pFill->DumpCode();
}

} // namespace Tarvane
