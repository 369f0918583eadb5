#include "utils/Parameter.h"

#include "utils/Assertion.h"
#include "utils/ParameterFormat.h"
#include "utils/ParameterSlabs.h"

using namespace ParameterFormat;

void CParameter::operator delete(CParameter* pParameter, std::destroying_delete_t)
{
    const bool fInSlab = pParameter->IsInSlab();
    void* pMemory = dynamic_cast<void*>(pParameter); // A class outside may have other bases, too.
    pParameter->~CParameter();
    if (fInSlab)
        CParameterSlabs::GiveBack(pMemory);
    else
        ::operator delete(pMemory);
}

unsigned long CParameter::GetSizeOfName() const
{
    return GetSizeOfNameField(*this);
}

unsigned long CParameter::SaveName(unsigned char* pDest) const
{
    return SaveNameField(pDest, *this);
}

unsigned int CParameter::LoadName(std::vector<std::string>* pNames, unsigned int nSize,
                                  unsigned char* pSource)
{
    return pNames ? LoadTokenName(*this, *pNames, nSize, pSource)
                  : LoadInlineName(*this, nSize, pSource);
}

void CParameter::AddNameToMap(std::map<std::string, int>& map) const
{
    if (!m_strName.empty())
        ++map[m_strName.str()];
}

void CParameter::UpdateTokenFromMap(std::map<std::string, int>& map)
{
    const auto it = m_strName.empty() ? map.end() : map.find(m_strName.str());
    m_nToken = it == map.end() ? 0 : it->second;
}

template <class Self, int nTag> unsigned long CValueParameter<Self, nTag>::GetSize() const
{
    return GetSizeOfName() + GetSizeOfPayload(ValueOf(static_cast<const Self&>(*this)));
}

template <class Self, int nTag>
unsigned long CValueParameter<Self, nTag>::Save(unsigned long, unsigned char* pDest) const
{
    const unsigned long nName = SaveName(pDest);
    return nName + SavePayload(pDest + nName, ValueOf(static_cast<const Self&>(*this)));
}

template <class Self, int nTag>
long CValueParameter<Self, nTag>::Load(std::vector<std::string>* pNames, unsigned long nSize,
                                       unsigned char* pSource)
{
    const unsigned long nName = LoadName(pNames, static_cast<unsigned int>(nSize), pSource);
    return static_cast<long>(
        nName + LoadPayload(ValueOf(static_cast<Self&>(*this)), nSize - nName, pSource + nName));
}

template <class Self, int nTag>
CParameter& CValueParameter<Self, nTag>::operator=(CParameter& other)
{
    auto& source = dynamic_cast<Self&>(other);
    m_strName = source.m_strName;
    ValueOf(static_cast<Self&>(*this)) = ValueOf(source);
    return *this;
}

template <class Self, int nTag>
void CValueParameter<Self, nTag>::CopyFrom(const CParameter* pSource)
{
    const auto* pSame = dynamic_cast<const Self*>(pSource);
    if (!pSame)
        return;
    m_strName = pSame->m_strName;
    ValueOf(static_cast<Self&>(*this)) = ValueOf(*pSame);
}

template class CValueParameter<CStringParameter, 1>;
template class CValueParameter<CIntParameter, 2>;
template class CValueParameter<CDoubleParameter, 3>;
template class CValueParameter<CUInt64Parameter, 4>;
template class CValueParameter<CFileIdTypeParameter, 5>;
template class CValueParameter<CBoolParameter, 7>;
template class CValueParameter<CFloatParameter, 8>;
template class CValueParameter<CSInt64Parameter, 9>;

unsigned long CFileIdTypeParameter::Save(unsigned long, unsigned char*) const
{
    // The four texts are fixed: reports of this stop are matched by them.
    AssertionFailed("Save", "ParameterBlock", 1239, "false");
}
