// What loads is saved and loads again as the same tree, in the same bytes from then on.
#include "fuzz/sessions/FuzzInput.h"

#include <CoreFoundation/CoreFoundation.h>

namespace
{
std::vector<unsigned char> Save(CParameterBlock& root)
{
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const unsigned long nSize = root.SaveBinarySessionToMemory(pData);
    const UInt8* pBytes = CFDataGetBytePtr(pData);
    std::vector<unsigned char> bytes(pBytes, pBytes + nSize);
    CFRelease(pData);
    return bytes;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    auto bytes = CopyOf(pBytes, nSize);
    CParameterBlock root;
    root.LoadBinarySessionFromMemory(bytes.data(), static_cast<unsigned int>(nSize));
    if (HoldsFileId(root))
        return 0;
    auto saved = Save(root);
    if (saved.empty())
        return 0;
    CParameterBlock again;
    Require(again.LoadBinarySessionFromMemory(saved.data(),
                                              static_cast<unsigned int>(saved.size())) == 0);
    Require(Flat(again) == Flat(root) && again.m_strName == root.m_strName);
    Require(Save(again) == saved);
    return 0;
}
