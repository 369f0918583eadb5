// The least that a receiver of events can be: the bus library and a loop around it. It answers the
// messages that the platform layer would send, byte for byte as bench-link-receiver does; what it
// answers to which script it has been taught by Learn (ay script, ay result).
#include <systemd/sd-bus.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

namespace
{

constexpr std::uint32_t kResultKey = 0x52736C74; // 'Rslt'

std::map<std::string, std::string> answers;

std::string ReadBytes(sd_bus_message* message)
{
    const void* bytes = nullptr;
    std::size_t size = 0;
    sd_bus_message_read_array(message, 'y', &bytes, &size);
    return std::string(static_cast<const char*>(bytes), size);
}

int Learn(sd_bus_message* message, void*, sd_bus_error*)
{
    const std::string script = ReadBytes(message);
    answers[script] = ReadBytes(message);
    return sd_bus_reply_method_return(message, "");
}

int Send(sd_bus_message* message, void*, sd_bus_error*)
{
    std::uint32_t eventClass = 0, id = 0, keyword = 0, type = 0;
    sd_bus_message_read(message, "uu", &eventClass, &id);
    sd_bus_message_enter_container(message, 'a', "(uuay)");
    sd_bus_message_enter_container(message, 'r', "uuay");
    sd_bus_message_read(message, "uu", &keyword, &type);
    const std::string& answer = answers[ReadBytes(message)];

    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(message, &reply);
    sd_bus_message_append(reply, "n", 0);
    sd_bus_message_open_container(reply, 'a', "(uuay)");
    sd_bus_message_open_container(reply, 'r', "uuay");
    sd_bus_message_append(reply, "uu", kResultKey, type);
    sd_bus_message_append_array(reply, 'y', answer.data(), answer.size());
    sd_bus_message_close_container(reply);
    sd_bus_message_close_container(reply);
    const int sent = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return sent;
}

const sd_bus_vtable kMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Send", "uua(uuay)", "na(uuay)", Send, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Learn", "ayay", "", Learn, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

} // namespace

int main()
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0 ||
        sd_bus_add_object_vtable(bus, nullptr, "/org/tarvane/AppleEvent", "org.tarvane.AppleEvent",
                                 kMethods, nullptr) < 0 ||
        sd_bus_request_name(bus, "org.tarvane.AppleEvent._72617720", 0) < 0)
    {
        std::puts("the bus cannot be used");
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
    {
        const int processed = sd_bus_process(bus, nullptr);
        if (processed < 0 || (processed == 0 && sd_bus_wait(bus, UINT64_MAX) < 0))
            return 1;
    }
}
