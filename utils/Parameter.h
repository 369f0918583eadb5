#pragma once

#include "utils/ByteString.h"
#include "utils/TGLFileIdType.h"

#include <map>
#include <new>
#include <string>
#include <vector>

/// A named, typed value: the base of the eight value classes below and of CParameterBlock.
///
/// The flat form of a parameter is its name field and, straight behind it, its payload. It has no
/// length of its own and no alignment, and its numbers are little-endian. The token decides how the
/// name is written:
///
///     token -1            u32 length, then the bytes of the name
///     token 0 to 254      u8 token
///     any other token     u8 0xFF, then the low 24 bits of the token, low byte first
///
/// Parameters carry no lock. One thread at a time uses a parameter, and all the parameters that one
/// load or one copy has made: they share memory. A copy is free of its source.
class CParameter
{
public:
    /// m_nToken of a parameter that carries its name inline. Any other value, read as unsigned, is
    /// an index into a session's name table, where 0 is the empty name.
    static constexpr int kNoToken = -1;

    const int m_nType; ///< The type tag; part of the file format.
    int m_nToken = kNoToken;
    CByteString m_strName;

    CParameter(const CParameter&) = delete;

    virtual ~CParameter() = default;

    /// For delete as anywhere: what a load or a copy has made may lie in memory that it shares.
    static void operator delete(CParameter* pParameter, std::destroying_delete_t);

    /// The bytes of name field and payload, which Save writes. The type tag is not among them: it
    /// belongs to the block that holds the parameter.
    virtual unsigned long GetSize() const = 0;

    /// Writes name field and payload at pDest and returns the bytes written. The caller has made
    /// room for GetSize() bytes; nSize is not looked at.
    virtual unsigned long Save(unsigned long nSize, unsigned char* pDest) const = 0;

    /// Reads name field and payload from at most nSize bytes and returns the bytes consumed. With
    /// pNames null the name stands inline, otherwise it is a token. A value that is cut short stays
    /// as it was and is no failure; only a block can fail, with -1.
    virtual long Load(std::vector<std::string>* pNames, unsigned long nSize,
                      unsigned char* pSource) = 0;

    /// Takes name and value of a parameter of the same class; the token stays. Raises std::bad_cast
    /// for another class of value, and then nothing has changed.
    virtual CParameter& operator=(CParameter& other) = 0;

    /// The bytes of the name field under the current token.
    unsigned long GetSizeOfName() const;

    /// Writes the name field at pDest, where GetSizeOfName() bytes have room; returns the bytes
    /// written.
    unsigned long SaveName(unsigned char* pDest) const;

    /// Reads the name field and returns the bytes consumed, 0 if it is cut short. An inline name
    /// that is empty or longer than the bytes at hand leaves the name as it was. A token stays in
    /// m_nToken; one beyond the table gives the empty name.
    unsigned int LoadName(std::vector<std::string>* pNames, unsigned int nSize,
                          unsigned char* pSource);

    /// Counts one use of this name in the map. The empty name is not counted.
    void AddNameToMap(std::map<std::string, int>& map) const;

    /// Takes the map's number for this name as token; 0 for an empty name or one not in the map.
    void UpdateTokenFromMap(std::map<std::string, int>& map);

protected:
    /// Tags 1 to 9 belong to the classes declared here and in ParameterBlock.h.
    explicit CParameter(int nType) : m_nType(nType) {}
    CParameter(int nType, const char* pName) : m_nType(nType), m_strName(pName) {}

private:
    friend class CParameterPool;

    void MarkAsInSlab() { m_strName.SetOwnersBit(); }
    bool IsInSlab() const { return m_strName.GetOwnersBit(); }
};

/// What the value classes share. Each is built empty, from a name and a value (a null name is the
/// empty name), or as a copy of name and value of a parameter of the same class. A copy has no
/// token, whatever its source has. The source of a copy must be of the class; from any other the
/// copy stays empty.
template <class Self, int nTag> class CValueParameter : public CParameter
{
public:
    static constexpr int kType = nTag;

    unsigned long GetSize() const override;
    unsigned long Save(unsigned long nSize, unsigned char* pDest) const override;
    long Load(std::vector<std::string>* pNames, unsigned long nSize,
              unsigned char* pSource) override;
    CParameter& operator=(CParameter& other) override;
    CValueParameter& operator=(CValueParameter& other)
    {
        return static_cast<CValueParameter&>(*this = static_cast<CParameter&>(other));
    }

protected:
    CValueParameter() : CParameter(nTag) {}
    explicit CValueParameter(const char* pName) : CParameter(nTag, pName) {}

    void CopyFrom(const CParameter* pSource);
};

/// Payload: u32 length, then the bytes, without terminator. A null value is the empty string.
class CStringParameter : public CValueParameter<CStringParameter, 1>
{
public:
    CByteString m_strValue;

    CStringParameter() = default;
    CStringParameter(const char* pName, const char* pValue)
        : CValueParameter(pName), m_strValue(pValue)
    {
    }
    explicit CStringParameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

/// Payload: 4 bytes, signed.
class CIntParameter : public CValueParameter<CIntParameter, 2>
{
public:
    int m_nValue = 0;

    CIntParameter() = default;
    CIntParameter(const char* pName, int nValue) : CValueParameter(pName), m_nValue(nValue) {}
    explicit CIntParameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

/// Payload: 8 bytes, IEEE 754.
class CDoubleParameter : public CValueParameter<CDoubleParameter, 3>
{
public:
    double m_dValue = 0.0;

    CDoubleParameter() = default;
    CDoubleParameter(const char* pName, double dValue) : CValueParameter(pName), m_dValue(dValue) {}
    explicit CDoubleParameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

/// Payload: 8 bytes, unsigned.
class CUInt64Parameter : public CValueParameter<CUInt64Parameter, 4>
{
public:
    unsigned long long m_nValue = 0;

    CUInt64Parameter() = default;
    CUInt64Parameter(const char* pName, unsigned long long nValue)
        : CValueParameter(pName), m_nValue(nValue)
    {
    }
    explicit CUInt64Parameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

/// Payload: nFileKey, then nFileSub. It can be read, sized and copied but not written.
class CFileIdTypeParameter : public CValueParameter<CFileIdTypeParameter, 5>
{
public:
    TGL::FileIdType m_idValue{-1, -1};

    CFileIdTypeParameter() = default;
    CFileIdTypeParameter(const char* pName, TGL::FileIdType idValue)
        : CValueParameter(pName), m_idValue(idValue)
    {
    }
    explicit CFileIdTypeParameter(const CParameter* pSource) { CopyFrom(pSource); }

    /// A deliberate stop: fails an assertion and ends the process.
    unsigned long Save(unsigned long nSize, unsigned char* pDest) const override;

    using CValueParameter::operator=;
};

/// Payload: 1 byte. Any byte but 0 reads as true.
class CBoolParameter : public CValueParameter<CBoolParameter, 7>
{
public:
    bool m_bValue = false;

    CBoolParameter() = default;
    CBoolParameter(const char* pName, bool bValue) : CValueParameter(pName), m_bValue(bValue) {}
    explicit CBoolParameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

/// Payload: 4 bytes, IEEE 754.
class CFloatParameter : public CValueParameter<CFloatParameter, 8>
{
public:
    float m_fValue = 0.0F;

    CFloatParameter() = default;
    CFloatParameter(const char* pName, float fValue) : CValueParameter(pName), m_fValue(fValue) {}
    explicit CFloatParameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

/// Payload: 8 bytes, signed.
class CSInt64Parameter : public CValueParameter<CSInt64Parameter, 9>
{
public:
    long long m_nValue = 0;

    CSInt64Parameter() = default;
    CSInt64Parameter(const char* pName, long long nValue) : CValueParameter(pName), m_nValue(nValue)
    {
    }
    explicit CSInt64Parameter(const CParameter* pSource) { CopyFrom(pSource); }

    using CValueParameter::operator=;
};

extern template class CValueParameter<CStringParameter, CStringParameter::kType>;
extern template class CValueParameter<CIntParameter, CIntParameter::kType>;
extern template class CValueParameter<CDoubleParameter, CDoubleParameter::kType>;
extern template class CValueParameter<CUInt64Parameter, CUInt64Parameter::kType>;
extern template class CValueParameter<CFileIdTypeParameter, CFileIdTypeParameter::kType>;
extern template class CValueParameter<CBoolParameter, CBoolParameter::kType>;
extern template class CValueParameter<CFloatParameter, CFloatParameter::kType>;
extern template class CValueParameter<CSInt64Parameter, CSInt64Parameter::kType>;
