// A session's header alone.
#include "fuzz/sessions/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    auto bytes = CopyOf(pBytes, nSize);
    std::vector<std::string> names;
    const unsigned int nRoot =
        CParameterBlock::LoadHeader(static_cast<unsigned int>(nSize), &names, bytes.data());
    if (nRoot == CParameterBlock::kBadHeader)
        return 0;
    Require(nRoot <= nSize && !names.empty() && names.front().empty());

    // Written again it takes the bytes that it says, and gives the same names.
    CParameterBlock::SessionNames table;
    for (std::size_t n = 1; n < names.size(); ++n)
        table.emplace_back(names[n], 1);
    std::vector<unsigned char> written(CParameterBlock::GetSizeOfHeader(&table) + 1);
    Require(CParameterBlock::SaveHeader(0, &table, written.data()) + 1 == written.size());
    std::vector<std::string> again;
    Require(CParameterBlock::LoadHeader(static_cast<unsigned int>(written.size()), &again,
                                        written.data()) == written.size() - 1);
    Require(again == names);
    return 0;
}
