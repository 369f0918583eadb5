#include "utils/ParameterBlock.h"
#include "utils/ParameterBlockLoader.h"
#include "utils/ParameterFormat.h"
#include "utils/ParameterWalk.h"

#include <algorithm>

using namespace ParameterFormat;

namespace
{
/// u32 count of parameters, then for each its u32 type tag and its flat form. A parameter that is a
/// block brings the same again behind its name field.
unsigned long GetSizeOfContents(const CParameterBlock& block)
{
    unsigned long nSize = kSizeOfCount;
    WalkParameters(block,
                   [&nSize](const CParameter& parameter)
                   {
                       nSize += kSizeOfTag;
                       nSize += IsBlock(parameter) ? parameter.GetSizeOfName() + kSizeOfCount
                                                   : parameter.GetSize();
                   });
    return nSize;
}

unsigned long SaveCount(unsigned char* pDest, const CParameterBlock& block)
{
    const auto& entries = block.m_vParameters;
    const auto nNulls = std::count(entries.begin(), entries.end(), nullptr);
    return Write(pDest, static_cast<std::uint32_t>(entries.size() - nNulls));
}

unsigned long SaveContents(unsigned char* pDest, const CParameterBlock& block)
{
    unsigned char* pNext = pDest;
    pNext += SaveCount(pNext, block);
    WalkParameters(block,
                   [&pNext](const CParameter& parameter)
                   {
                       pNext += Write(pNext, static_cast<std::uint32_t>(parameter.m_nType));
                       if (IsBlock(parameter))
                       {
                           pNext += parameter.SaveName(pNext);
                           pNext +=
                               SaveCount(pNext, static_cast<const CParameterBlock&>(parameter));
                       }
                       else
                           pNext += parameter.Save(0, pNext);
                   });
    return static_cast<unsigned long>(pNext - pDest);
}
} // namespace

unsigned long CParameterBlock::GetSize() const
{
    return GetSizeOfName() + GetSizeOfContents(*this);
}

unsigned long CParameterBlock::Save(unsigned long, unsigned char* pDest) const
{
    const unsigned long nName = SaveName(pDest);
    return nName + SaveContents(pDest + nName, *this);
}

unsigned char* CParameterBlock::CreateBlock(unsigned long* pSize) const
{
    *pSize = GetSizeOfContents(*this);
    auto* pBuffer = new unsigned char[*pSize];
    SaveContents(pBuffer, *this);
    return pBuffer;
}

long CParameterBlock::Load(std::vector<std::string>* pNames, unsigned long nSize,
                           unsigned char* pSource)
{
    const unsigned int nName = LoadName(pNames, static_cast<unsigned int>(nSize), pSource);
    const long nRest = LoadBlock(pNames, nSize - nName, pSource + nName);
    return nRest < 0 ? -1 : nRest + nName;
}

long CParameterBlock::LoadBlock(std::vector<std::string>* pNames, unsigned long nSize,
                                void* pSource)
{
    Clear();
    return LoadContents(*this, pNames, nSize, static_cast<unsigned char*>(pSource));
}
