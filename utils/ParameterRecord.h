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
    const unsigned long nSize = VisitValue(
        parameter, 0ul, [](const auto& value) { return GetSizeOfPayload(ValueOf(value)); });
    return nSize != 0 ? nSize : parameter.GetSize() - parameter.GetSizeOfName();
}

inline unsigned long GetSizeOfRecord(const CParameter& parameter)
{
    return kSizeOfTag + GetSizeOfNameField(parameter) + GetSizeOfRecordPayload(parameter);
}

/// Returns the place behind the record.
inline unsigned char* SaveRecord(unsigned char* pDest, const CParameter& parameter)
{
    pDest += Write(pDest, static_cast<std::uint32_t>(parameter.m_nType));
    unsigned char* pPayload = pDest + SaveNameField(pDest, parameter);
    if (IsBlock(parameter))
        return pPayload + SaveCount(pPayload, static_cast<const CParameterBlock&>(parameter));
    unsigned char* pEnd = nullptr;
    // A file id is left to its own Save, which refuses.
    if (parameter.m_nType != CFileIdTypeParameter::kType)
        pEnd = VisitValue(parameter, pEnd,
                          [pPayload](const auto& value)
                          { return pPayload + SavePayload(pPayload, ValueOf(value)); });
    return pEnd ? pEnd : pDest + parameter.Save(parameter.GetSize(), pDest);
}
} // namespace ParameterFormat
