#include "tests/utils/ParameterHelpers.h"

#include "utils/ParameterWalk.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <typeinfo>

std::string SaveSession(CParameterBlock& block)
{
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const unsigned long nSize = block.SaveBinarySessionToMemory(pData);
    std::string bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(pData)), nSize);
    CFRelease(pData);
    return bytes;
}

void ExpectClassesOfTags(const CParameterBlock& block)
{
    static const std::type_info* const classes[] = {nullptr,
                                                    &typeid(CStringParameter),
                                                    &typeid(CIntParameter),
                                                    &typeid(CDoubleParameter),
                                                    &typeid(CUInt64Parameter),
                                                    &typeid(CFileIdTypeParameter),
                                                    &typeid(CParameterBlock),
                                                    &typeid(CBoolParameter),
                                                    &typeid(CFloatParameter),
                                                    &typeid(CSInt64Parameter)};
    std::size_t nEntry = 0;
    WalkParameters(block,
                   [&nEntry](const CParameter& parameter)
                   {
                       ASSERT_TRUE(*classes[parameter.m_nType] == typeid(parameter)) << nEntry;
                       ++nEntry;
                   });
    EXPECT_GT(nEntry, 1100u) << "so many that some come from slabs";
}
