// JSON from anywhere. What is taken reads back the same.
#include "apps/session/Json.h"
#include "apps/support/program/CommandLine.h"
#include "fuzz/sessions/FuzzInput.h"

#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    using namespace Tarvane::Session;
    CParameterBlock root;
    try
    {
        ReadJson({reinterpret_cast<const char*>(pBytes), nSize}, root);
    }
    catch (const Tarvane::CUsageError&)
    {
        return 0;
    }
    std::ostringstream text;
    WriteJson(root, text);
    CParameterBlock again;
    ReadJson(text.str(), again);
    std::ostringstream textAgain;
    WriteJson(again, textAgain);
    Require(textAgain.str() == text.str());
    Require(HoldsFileId(root) || Flat(again) == Flat(root));
    return 0;
}
