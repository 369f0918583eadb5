#include "bench/link/RawCaller.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <stdexcept>

namespace Bench
{
namespace
{

constexpr std::uint32_t kClass = 0x544B4E45;  // 'TKNE'
constexpr std::uint32_t kId = 0x4C436D64;     // 'LCmd'
constexpr std::uint32_t kDirect = 0x2D2D2D2D; // '----'
constexpr std::uint32_t kText = 0x75747874;   // 'utxt'

sd_bus_message* NewCall(sd_bus* bus, const char* szDestination, const char* szMember)
{
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_method_call(bus, &message, szDestination, "/org/tarvane/AppleEvent",
                                       "org.tarvane.AppleEvent", szMember) < 0)
        throw std::runtime_error("no message can be made");
    return message;
}

// The answer; the question goes.
sd_bus_message* Call(sd_bus* bus, sd_bus_message* message)
{
    sd_bus_message* answer = nullptr;
    const int called = sd_bus_call(bus, message, 0, nullptr, &answer);
    sd_bus_message_unref(message);
    if (called < 0)
        throw std::runtime_error("a raw call failed");
    return answer;
}

} // namespace

CRawCaller::CRawCaller()
{
    if (sd_bus_open_user(&m_bus) < 0)
        throw std::runtime_error("there is no session bus - use scripts/with-desktop");
}

CRawCaller::~CRawCaller()
{
    sd_bus_close_unref(m_bus);
}

std::string CRawCaller::Trip(const char* szDestination, const std::string& script)
{
    sd_bus_message* message = NewCall(m_bus, szDestination, "Send");
    sd_bus_message_append(message, "uu", kClass, kId);
    sd_bus_message_open_container(message, 'a', "(uuay)");
    sd_bus_message_open_container(message, 'r', "uuay");
    sd_bus_message_append(message, "uu", kDirect, kText);
    sd_bus_message_append_array(message, 'y', script.data(), script.size());
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);

    sd_bus_message* answer = Call(m_bus, message);
    std::int16_t status = 0;
    std::uint32_t keyword = 0, type = 0;
    const void* bytes = nullptr;
    std::size_t size = 0;
    sd_bus_message_read(answer, "n", &status);
    sd_bus_message_enter_container(answer, 'a', "(uuay)");
    sd_bus_message_enter_container(answer, 'r', "uuay");
    sd_bus_message_read(answer, "uu", &keyword, &type);
    const int read = sd_bus_message_read_array(answer, 'y', &bytes, &size);
    std::string result(static_cast<const char*>(bytes), read < 0 ? 0 : size);
    sd_bus_message_unref(answer);
    if (status != 0 || read < 0)
        throw std::runtime_error("a raw call brought no result");
    return result;
}

void CRawCaller::Teach(const std::string& script, const std::string& result)
{
    sd_bus_message* message = NewCall(m_bus, kRawName, "Learn");
    sd_bus_message_append_array(message, 'y', script.data(), script.size());
    sd_bus_message_append_array(message, 'y', result.data(), result.size());
    sd_bus_message_unref(Call(m_bus, message));
}

} // namespace Bench
