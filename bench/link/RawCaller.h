// A client of the bus without the link: the bus library's own blocking call.
#pragma once

#include <string>

struct sd_bus;

namespace Bench
{

constexpr const char* kServerName = "org.tarvane.AppleEvent._546b4e65";
constexpr const char* kRawName = "org.tarvane.AppleEvent._72617720";

/// One thread. Throws std::runtime_error when a call fails.
class CRawCaller
{
public:
    CRawCaller();
    ~CRawCaller();
    CRawCaller(const CRawCaller&) = delete;
    CRawCaller& operator=(const CRawCaller&) = delete;

    /// What the link's command makes of the bus: the script's bytes go out as the direct parameter
    /// of an event, and the bytes of 'Rslt' are what comes back.
    std::string Trip(const char* szDestination, const std::string& script);

    /// Has the raw receiver answer so.
    void Teach(const std::string& script, const std::string& result);

private:
    sd_bus* m_bus = nullptr;
};

} // namespace Bench
