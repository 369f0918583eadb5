// A flat block with its names inline.
#include "fuzz/sessions/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    auto bytes = CopyOf(pBytes, nSize);
    CParameterBlock root;
    const long nResult = root.LoadBlock(nullptr, nSize, bytes.data());
    Require(nResult >= -1 && nResult <= static_cast<long>(nSize));
    UseTree(root);
    if (HoldsFileId(root))
        return 0;
    // What is written from the tree reads back as the same tree.
    std::string flat = Flat(root);
    CParameterBlock again;
    Require(again.LoadBlock(nullptr, flat.size(), flat.data()) == static_cast<long>(flat.size()));
    Require(Flat(again) == flat);
    return 0;
}
