#pragma once

#include "tests/utils/Bytes.h"
#include "utils/ParameterBlock.h"

#include <string>
#include <vector>

/// What Save writes, into memory of exactly GetSize() bytes.
inline std::string SaveFlat(const CParameter& parameter)
{
    ExactBuffer buffer(std::string(parameter.GetSize(), '\0'));
    const unsigned long nWritten = parameter.Save(buffer.Size(), buffer.Get());
    return std::string(reinterpret_cast<char*>(buffer.Get()), nWritten);
}

inline long LoadFlat(CParameter& parameter, const std::string& bytes,
                     std::vector<std::string>* pNames = nullptr)
{
    ExactBuffer buffer(bytes);
    return parameter.Load(pNames, buffer.Size(), buffer.Get());
}

inline std::string CreateBlock(const CParameterBlock& block)
{
    unsigned long nSize = 0;
    unsigned char* pBytes = block.CreateBlock(&nSize);
    std::string bytes(reinterpret_cast<char*>(pBytes), nSize);
    delete[] pBytes;
    return bytes;
}

inline long LoadBlock(CParameterBlock& block, const std::string& bytes,
                      std::vector<std::string>* pNames = nullptr)
{
    ExactBuffer buffer(bytes);
    return block.LoadBlock(pNames, buffer.Size(), buffer.Get());
}

inline int LoadSession(CParameterBlock& block, const std::string& bytes)
{
    ExactBuffer buffer(bytes);
    return block.LoadBinarySessionFromMemory(buffer.Get(), buffer.Size());
}

/// The session's bytes, without the spare ones.
std::string SaveSession(CParameterBlock& block);

/// Every entry, nested ones too, is of the very class that its tag says.
void ExpectClassesOfTags(const CParameterBlock& block);

template <class Parameter> Parameter& At(const CParameterBlock& block, std::size_t nIndex)
{
    return dynamic_cast<Parameter&>(*block.m_vParameters[nIndex]);
}
