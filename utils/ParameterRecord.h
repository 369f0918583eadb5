#pragma once

#include "utils/ParameterFormat.h"
#include "utils/ParameterWalk.h"

#include <algorithm>

/// What stands in a flat block for one of its parameters: u32 type tag, then the flat form. For a
/// block that is its name field and its count; the records of its own parameters follow. A walk
/// over the tree gives all records in their order.
namespace ParameterFormat
{
inline unsigned long SaveCount(unsigned char* pDest, const CParameterBlock& block)
{
    const auto& entries = block.m_vParameters;
    const auto nNulls = std::count(entries.begin(), entries.end(), nullptr);
    return Write(pDest, static_cast<std::uint32_t>(entries.size() - nNulls));
}

/// Without tag and name field.
inline unsigned long GetSizeOfRecordPayload(const CParameter& parameter)
{
    if (IsBlock(parameter))
        return kSizeOfCount;
    unsigned long nSize = 0;
    const bool fKnown = VisitValue(parameter, [&nSize](const auto& value)
                                   { nSize = GetSizeOfPayload(ValueOf(value)); });
    return fKnown ? nSize : parameter.GetSize() - parameter.GetSizeOfName();
}

inline unsigned long GetSizeOfRecord(const CParameter& parameter)
{
    return kSizeOfTag + parameter.GetSizeOfName() + GetSizeOfRecordPayload(parameter);
}

inline unsigned char* SaveRecord(unsigned char* pDest, const CParameter& parameter)
{
    pDest += Write(pDest, static_cast<std::uint32_t>(parameter.m_nType));
    const auto save = [&pDest](const auto& value)
    {
        pDest += value.SaveName(pDest);
        if constexpr (requires { value.m_vParameters; })
            pDest += SaveCount(pDest, value);
        else
            pDest += SavePayload(pDest, ValueOf(value));
    };
    if (IsBlock(parameter))
        save(static_cast<const CParameterBlock&>(parameter));
    else if (parameter.m_nType == CFileIdTypeParameter::kType || !VisitValue(parameter, save))
        pDest += parameter.Save(parameter.GetSize(), pDest);
    return pDest;
}
} // namespace ParameterFormat
