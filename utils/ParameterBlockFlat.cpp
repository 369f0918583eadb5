#include "utils/ParameterBlock.h"
#include "utils/ParameterBlockLoader.h"
#include "utils/ParameterRecord.h"

#include <memory>

using namespace ParameterFormat;

namespace
{
// u32 count of parameters, then their records.
unsigned long GetSizeOfContents(const CParameterBlock& block)
{
    unsigned long nSize = kSizeOfCount;
    WalkParameters(block,
                   [&nSize](const CParameter& parameter)
                   {
                       nSize += GetSizeOfRecord(parameter);
                       return IsOwnBlock(parameter);
                   });
    return nSize;
}

unsigned long SaveContents(unsigned char* pDest, const CParameterBlock& block)
{
    unsigned char* pNext = pDest + SaveCount(pDest, block);
    WalkParameters(block,
                   [&pNext](const CParameter& parameter)
                   {
                       pNext = SaveRecord(pNext, parameter);
                       return IsOwnBlock(parameter);
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
    const unsigned long nSize = GetSizeOfContents(*this);
    std::unique_ptr<unsigned char[]> pBuffer(new unsigned char[nSize]);
    unsigned char* pNext = pBuffer.get() + SaveCount(pBuffer.get(), *this);
    for (const CParameter* pEntry : m_vParameters)
    {
        if (!pEntry)
            continue;
        if (IsOwnClass(*pEntry) && !IsBlock(*pEntry))
        {
            pNext = SaveOwnRecord(pNext, *pEntry);
            continue;
        }
        pNext += Write(pNext, static_cast<std::uint32_t>(pEntry->m_nType));
        // Here, unlike in Save, what Save returns moves on.
        pNext += pEntry->Save(static_cast<unsigned long>(pBuffer.get() + nSize - pNext), pNext);
    }
    *pSize = nSize;
    return pBuffer.release();
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
