#pragma once

#include "utils/ParameterFormat.h"
#include "utils/ParameterWalk.h"

#include <algorithm>
#include <iterator>
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

/// By type tag.
inline const std::type_info* const kClasses[] = {
    nullptr,
    &typeid(CStringParameter),
    &typeid(CIntParameter),
    &typeid(CDoubleParameter),
    &typeid(CUInt64Parameter),
    &typeid(CFileIdTypeParameter),
    &typeid(CParameterBlock),
    &typeid(CBoolParameter),
    &typeid(CFloatParameter),
    &typeid(CSInt64Parameter),
};

/// Whether it is of its tag's very class. What a class derived outside makes of GetSize and Save it
/// alone knows. The addresses are compared: where a class has several, the long way is taken.
inline bool IsOwnClass(const CParameter& parameter)
{
    const auto nTag = static_cast<unsigned int>(parameter.m_nType);
    return nTag < std::size(kClasses) && &typeid(parameter) == kClasses[nTag];
}

inline bool IsOwnBlock(const CParameter& parameter)
{
    return IsBlock(parameter) && IsOwnClass(parameter);
}

/// Of one of our own class, without tag and name field.
inline unsigned long GetSizeOfOwnPayload(const CParameter& parameter)
{
    return VisitValue(parameter, kSizeOfCount,
                      [](const auto& value) { return GetSizeOfPayload(ValueOf(value)); });
}

inline unsigned long GetSizeOfRecord(const CParameter& parameter)
{
    return kSizeOfTag + (IsOwnClass(parameter)
                             ? GetSizeOfNameField(parameter) + GetSizeOfOwnPayload(parameter)
                             : parameter.GetSize());
}

/// Of one of our own class; returns the place behind the record.
inline unsigned char* SaveOwnRecord(unsigned char* pDest, const CParameter& parameter)
{
    pDest += Write(pDest, static_cast<std::uint32_t>(parameter.m_nType));
    unsigned char* pPayload = pDest + SaveNameField(pDest, parameter);
    if (IsBlock(parameter))
        return pPayload + SaveCount(pPayload, static_cast<const CParameterBlock&>(parameter));
    const auto save = [pDest, pPayload](const auto& value)
    {
        // A file id is left to its own Save, which refuses.
        if constexpr (requires { value.m_idValue; })
            return pDest + value.Save(value.GetSize(), pDest);
        else
            return pPayload + SavePayload(pPayload, ValueOf(value));
    };
    return VisitValue(parameter, pPayload, save);
}

/// Returns the place behind the record, which is where its GetSize says.
inline unsigned char* SaveRecord(unsigned char* pDest, const CParameter& parameter)
{
    if (IsOwnClass(parameter))
        return SaveOwnRecord(pDest, parameter);
    const unsigned long nSize = parameter.GetSize();
    pDest += Write(pDest, static_cast<std::uint32_t>(parameter.m_nType));
    parameter.Save(nSize, pDest);
    return pDest + nSize;
}
} // namespace ParameterFormat
