#pragma once

#include "utils/Parameter.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

/// The pieces of the flat form, each in one place, for the classes themselves and for the loader
/// and the writer of whole trees. Not for users of parameters.
namespace ParameterFormat
{
static_assert(std::endian::native == std::endian::little,
              "numbers are stored as plain copies of their bytes");

constexpr unsigned char kLongTokenMark = 0xFF;
constexpr unsigned long kSizeOfTag = 4;
constexpr unsigned long kSizeOfCount = 4;

template <typename T> T Read(const unsigned char* pSource)
{
    T value;
    std::memcpy(&value, pSource, sizeof value);
    return value;
}

template <typename T> unsigned long Write(unsigned char* pDest, T value)
{
    std::memcpy(pDest, &value, sizeof value);
    return sizeof value;
}

inline unsigned long GetSizeOfToken(int nToken)
{
    return static_cast<unsigned int>(nToken) < kLongTokenMark ? 1 : 4;
}

inline unsigned long WriteToken(unsigned char* pDest, int nToken)
{
    const auto nUnsigned = static_cast<std::uint32_t>(nToken);
    if (nUnsigned < kLongTokenMark)
    {
        *pDest = static_cast<unsigned char>(nUnsigned);
        return 1;
    }
    return Write<std::uint32_t>(pDest, nUnsigned << 8 | kLongTokenMark);
}

/// The token stays as it was when it is cut short. Returns the bytes consumed.
inline unsigned int ReadToken(const unsigned char* pSource, unsigned int nSize, int& nToken)
{
    if (nSize == 0)
        return 0;
    if (*pSource != kLongTokenMark)
    {
        nToken = *pSource;
        return 1;
    }
    if (nSize < 4)
        return 0;
    nToken = static_cast<int>(Read<std::uint32_t>(pSource) >> 8);
    return 4;
}

/// Names: the table as the caller keeps it, std::string or CByteString.
template <typename Name>
unsigned int LoadTokenName(CParameter& parameter, const std::vector<Name>& names,
                           unsigned int nSize, const unsigned char* pSource)
{
    if (nSize == 0)
        return 0;
    const unsigned int nUsed = ReadToken(pSource, nSize, parameter.m_nToken);
    // A token that is cut short leaves the one before it in force.
    const auto nIndex = static_cast<unsigned int>(parameter.m_nToken);
    if (nIndex < names.size())
        parameter.m_strName = names[nIndex];
    else
        parameter.m_strName = CByteString();
    return nUsed;
}

inline unsigned int LoadInlineName(CParameter& parameter, unsigned int nSize,
                                   const unsigned char* pSource)
{
    if (nSize < 4)
        return 0;
    const auto nLength = Read<std::uint32_t>(pSource);
    if (nLength == 0 || nLength > nSize - 4)
        return 4;
    parameter.m_strName = std::string_view(reinterpret_cast<const char*>(pSource + 4), nLength);
    return 4 + nLength;
}

template <class Parameter> auto& ValueOf(Parameter& parameter)
{
    if constexpr (requires { parameter.m_nValue; })
        return parameter.m_nValue;
    else if constexpr (requires { parameter.m_dValue; })
        return parameter.m_dValue;
    else if constexpr (requires { parameter.m_fValue; })
        return parameter.m_fValue;
    else if constexpr (requires { parameter.m_bValue; })
        return parameter.m_bValue;
    else if constexpr (requires { parameter.m_idValue; })
        return parameter.m_idValue;
    else
        return parameter.m_strValue;
}

/// Calls visit with a value parameter as what it is and returns the result; other for a tag that no
/// value class has.
template <typename Result, typename Visit>
Result VisitValue(const CParameter& parameter, Result other, Visit&& visit)
{
    switch (parameter.m_nType)
    {
    case CStringParameter::kType:
        return visit(static_cast<const CStringParameter&>(parameter));
    case CIntParameter::kType:
        return visit(static_cast<const CIntParameter&>(parameter));
    case CDoubleParameter::kType:
        return visit(static_cast<const CDoubleParameter&>(parameter));
    case CUInt64Parameter::kType:
        return visit(static_cast<const CUInt64Parameter&>(parameter));
    case CFileIdTypeParameter::kType:
        return visit(static_cast<const CFileIdTypeParameter&>(parameter));
    case CBoolParameter::kType:
        return visit(static_cast<const CBoolParameter&>(parameter));
    case CFloatParameter::kType:
        return visit(static_cast<const CFloatParameter&>(parameter));
    case CSInt64Parameter::kType:
        return visit(static_cast<const CSInt64Parameter&>(parameter));
    default:
        return other;
    }
}

template <typename T> unsigned long GetSizeOfPayload(const T&)
{
    return sizeof(T);
}
inline unsigned long GetSizeOfPayload(const CByteString& value)
{
    return 4 + value.size();
}

template <typename T> unsigned long SavePayload(unsigned char* pDest, const T& value)
{
    return Write(pDest, value);
}

inline unsigned long SavePayload(unsigned char* pDest, const CByteString& value)
{
    Write(pDest, static_cast<std::uint32_t>(value.size()));
    std::memcpy(pDest + 4, value.data(), value.size());
    return 4 + value.size();
}

inline unsigned long GetSizeOfNameField(const CParameter& parameter)
{
    return parameter.m_nToken == CParameter::kNoToken ? GetSizeOfPayload(parameter.m_strName)
                                                      : GetSizeOfToken(parameter.m_nToken);
}

inline unsigned long SaveNameField(unsigned char* pDest, const CParameter& parameter)
{
    return parameter.m_nToken == CParameter::kNoToken ? SavePayload(pDest, parameter.m_strName)
                                                      : WriteToken(pDest, parameter.m_nToken);
}

/// Returns the bytes consumed: none, and the value stays, when nSize does not hold it.
template <typename T>
unsigned long LoadPayload(T& value, unsigned long nSize, const unsigned char* pSource)
{
    if (nSize < sizeof(T))
        return 0;
    value = Read<T>(pSource);
    return sizeof(T);
}

inline unsigned long LoadPayload(bool& value, unsigned long nSize, const unsigned char* pSource)
{
    if (nSize < 1)
        return 0;
    value = *pSource != 0;
    return 1;
}

inline unsigned long LoadPayload(TGL::FileIdType& value, unsigned long nSize,
                                 const unsigned char* pSource)
{
    if (nSize < GetSizeOfPayload(value))
        return 0;
    value.nFileKey = Read<std::int64_t>(pSource);
    value.nFileSub = Read<long>(pSource + sizeof value.nFileKey);
    return GetSizeOfPayload(value);
}

/// A length that overruns gives the empty string, and only the length counts as consumed: what
/// follows is read from the string's bytes.
inline unsigned long LoadPayload(CByteString& value, unsigned long nSize,
                                 const unsigned char* pSource)
{
    value = CByteString();
    if (nSize < 4)
        return 0;
    const auto nLength = Read<std::uint32_t>(pSource);
    if (nLength == 0 || nLength > nSize - 4)
        return 4;
    value = std::string_view(reinterpret_cast<const char*>(pSource + 4), nLength);
    return 4 + nLength;
}
} // namespace ParameterFormat
