// The strict reader of tarvane-session. What it finds fine, the lenient one loads.
#include "apps/session/SessionScan.h"
#include "fuzz/sessions/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    auto bytes = CopyOf(pBytes, nSize);
    const auto session =
        Tarvane::Session::Scan({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (session.flaw)
    {
        Require(session.flaw->nOffset <= nSize);
        return 0;
    }
    CParameterBlock root;
    Require(root.LoadBinarySessionFromMemory(bytes.data(), static_cast<unsigned int>(nSize)) == 0);
    return 0;
}
