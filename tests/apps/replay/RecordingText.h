// Recordings written by hand.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace TarvaneTest
{

inline std::string HeaderLine()
{
    return R"({"format":"tarvane-recording","version":1,"started":"2026-03-01T12:34:56.789012Z",)"
           R"("program":"by hand","programVersion":"1"})"
           "\n";
}

inline nlohmann::json TextParameter(const std::string& strText)
{
    return {{"type", "utxt"}, {"text", strText}};
}

inline std::string EventLine(int nNumber, long long nTime, const std::string& strScript)
{
    return nlohmann::json{{"time", nTime},
                          {"kind", "event"},
                          {"number", nNumber},
                          {"target", "TkNe"},
                          {"class", "TKNE"},
                          {"id", "LCmd"},
                          {"parameters", {{"----", TextParameter(strScript)}}}}
               .dump() +
           "\n";
}

inline std::string ReplyLine(int nNumber, long long nTime, const nlohmann::json& parameters,
                             int nStatus = 0, long long nTook = 1000)
{
    return nlohmann::json{{"time", nTime},     {"kind", "reply"}, {"number", nNumber},
                          {"status", nStatus}, {"took", nTook},   {"parameters", parameters}}
               .dump() +
           "\n";
}

/// An event and its printed result.
inline std::string ExchangeLines(int nNumber, const std::string& strScript,
                                 const std::string& strResult)
{
    return EventLine(nNumber, nNumber * 1000, strScript) +
           ReplyLine(nNumber, nNumber * 1000 + 500, {{"Rslt", TextParameter(strResult)}});
}

} // namespace TarvaneTest
