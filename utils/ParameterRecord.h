#pragma once

#include "utils/ParameterFormat.h"
#include "utils/ParameterWalk.h"

#include <algorithm>
#include <typeinfo>

/// What stands in a flat block for one of its parameters: u32 type tag, then the flat form. For a
/// block that is its name field and its count; the records of its own parameters follow. A walk
/// over the tree gives all records in their order. A parameter of a class derived outside writes
/// itself, with what it holds, and no walk goes into it.
namespace ParameterFormat
{
inline unsigned long SaveCount(unsigned char* pDest, const CParameterBlock& block)
{
    const auto& entries = block.m_vParameters;
    const auto nNulls = std::count(entries.begin(), entries.end(), nullptr);
    return Write(pDest, static_cast<std::uint32_t>(entries.size() - nNulls));
}

/// Of this very class: what another class has made of GetSize and Save is not known here.
template <class Parameter> bool IsExactly(const CParameter& parameter)
{
    return typeid(parameter) == typeid(Parameter);
}

/// Calls visit with a value parameter as what it is, if it is of its tag's very class, and returns
/// the result; otherwise other.
template <typename Result, typename Visit>
Result VisitOwnValue(const CParameter& parameter, Result other, Visit&& visit)
{
    return VisitValue(parameter, other,
                      [other, &visit]<class Parameter>(const Parameter& value)
                      { return IsExactly<Parameter>(value) ? visit(value) : other; });
}

inline bool IsOwnBlock(const CParameter& parameter)
{
    return IsBlock(parameter) && IsExactly<CParameterBlock>(parameter);
}

/// Without tag and name field; 0 for what its own GetSize alone knows.
inline unsigned long GetSizeOfRecordPayload(const CParameter& parameter)
{
    if (IsOwnBlock(parameter))
        return kSizeOfCount;
    return VisitOwnValue(parameter, 0ul,
                         [](const auto& value) { return GetSizeOfPayload(ValueOf(value)); });
}

inline unsigned long GetSizeOfRecord(const CParameter& parameter)
{
    const unsigned long nPayload = GetSizeOfRecordPayload(parameter);
    return kSizeOfTag +
           (nPayload != 0 ? GetSizeOfNameField(parameter) + nPayload : parameter.GetSize());
}

/// Writes the record of a value of its tag's very class, or of a block without the records of its
/// contents, and returns the place behind it; null for what its own Save alone can write.
inline unsigned char* SaveOwnRecord(unsigned char* pDest, const CParameter& parameter)
{
    const auto save = [pDest, &parameter](const auto& value)
    {
        unsigned char* pNext = pDest + Write(pDest, static_cast<std::uint32_t>(parameter.m_nType));
        pNext += SaveNameField(pNext, parameter);
        return pNext + SavePayload(pNext, ValueOf(value));
    };
    // A file id is left to its own Save, which refuses.
    if (parameter.m_nType == CFileIdTypeParameter::kType)
        return nullptr;
    return VisitOwnValue(parameter, static_cast<unsigned char*>(nullptr), save);
}

inline unsigned char* SaveOwnBlockRecord(unsigned char* pDest, const CParameter& block)
{
    pDest += Write(pDest, static_cast<std::uint32_t>(block.m_nType));
    pDest += SaveNameField(pDest, block);
    return pDest + SaveCount(pDest, static_cast<const CParameterBlock&>(block));
}

/// Returns the place behind the record, which is where its GetSize says.
inline unsigned char* SaveRecord(unsigned char* pDest, const CParameter& parameter)
{
    if (IsOwnBlock(parameter))
        return SaveOwnBlockRecord(pDest, parameter);
    if (unsigned char* pEnd = SaveOwnRecord(pDest, parameter))
        return pEnd;
    const unsigned long nSize = parameter.GetSize();
    pDest += Write(pDest, static_cast<std::uint32_t>(parameter.m_nType));
    parameter.Save(nSize, pDest);
    return pDest + nSize;
}
} // namespace ParameterFormat
