// A session from memory.
#include "fuzz/sessions/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    auto bytes = CopyOf(pBytes, nSize);
    CParameterBlock root;
    const int nResult =
        root.LoadBinarySessionFromMemory(bytes.data(), static_cast<unsigned int>(nSize));
    Require(nResult == CParameterBlock::kSessionDone ||
            nResult == CParameterBlock::kSessionBadRecords ||
            nResult == CParameterBlock::kSessionBadHeader);
    Require(nResult != CParameterBlock::kSessionBadHeader || root.m_vParameters.empty());
    UseTree(root);
    return 0;
}
