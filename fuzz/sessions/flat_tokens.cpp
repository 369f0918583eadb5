// A flat block that needs a name table: the first byte is the size of the table.
#include "fuzz/sessions/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    if (nSize == 0)
        return 0;
    std::vector<std::string> names;
    for (int n = 0; n < pBytes[0] * 2; ++n)
        names.push_back(std::string(static_cast<std::size_t>(n % 30), 'n'));
    auto bytes = CopyOf(pBytes + 1, nSize - 1);
    CParameterBlock root;
    const long nResult = root.LoadBlock(&names, bytes.size(), bytes.data());
    Require(nResult >= -1 && nResult <= static_cast<long>(bytes.size()));
    UseTree(root);
    return 0;
}
