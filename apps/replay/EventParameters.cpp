#include "apps/replay/EventParameters.h"

namespace Tarvane::Replay
{

Parameters ReadParameters(const AppleEvent* pEvent, const std::set<AEKeyword>& keywords)
{
    Parameters parameters;
    for (const AEKeyword nKeyword : keywords)
    {
        Parameter parameter;
        Size nBytes = 0;
        if (AESizeOfParam(pEvent, nKeyword, &parameter.nType, &nBytes) != noErr)
            continue;
        parameter.strBytes.resize(static_cast<std::size_t>(nBytes));
        AEGetParamPtr(pEvent, nKeyword, typeWildCard, nullptr, parameter.strBytes.data(), nBytes,
                      nullptr);
        parameters[nKeyword] = std::move(parameter);
    }
    return parameters;
}

OSErr PutParameters(AppleEvent* pEvent, const Parameters& parameters)
{
    for (const auto& [nKeyword, parameter] : parameters)
    {
        const OSErr nStatus =
            AEPutParamPtr(pEvent, nKeyword, parameter.nType, parameter.strBytes.data(),
                          static_cast<Size>(parameter.strBytes.size()));
        if (nStatus != noErr)
            return nStatus;
    }
    return noErr;
}

} // namespace Tarvane::Replay
