#include "platform/gnustep/AppleEvents/Wire.h"

#include "platform/gnustep/AppleEvents/Status.h"

#include <cstdint>

namespace AppleEvents
{
namespace
{

int AppendParameter(sd_bus_message* message, AEKeyword keyword, const Parameter& parameter)
{
    int result = sd_bus_message_open_container(message, 'r', "uuay");
    if (result >= 0)
        result = sd_bus_message_append(message, "uu", keyword, parameter.type);
    if (result >= 0)
        result = sd_bus_message_append_array(message, 'y', parameter.bytes.data(),
                                             parameter.bytes.size());
    if (result >= 0)
        result = sd_bus_message_close_container(message);
    return result;
}

// Positive when there was one more parameter. The bytes stay the message's.
int ReadParameter(sd_bus_message* message, std::uint32_t& keyword, std::uint32_t& type,
                  const void*& bytes, std::size_t& size)
{
    const int entered = sd_bus_message_enter_container(message, 'r', "uuay");
    if (entered <= 0)
        return entered;
    int result = sd_bus_message_read(message, "uu", &keyword, &type);
    if (result >= 0)
        result = sd_bus_message_read_array(message, 'y', &bytes, &size);
    if (result >= 0)
        result = sd_bus_message_exit_container(message);
    return result < 0 ? result : 1;
}

} // namespace

std::string BusNameForSignature(OSType signature)
{
    std::string name = std::string(kInterface) + "._";
    for (int shift = 28; shift >= 0; shift -= 4)
        name += "0123456789abcdef"[signature >> shift & 0xF];
    return name;
}

bool FitsInMessage(const Parameters& parameters)
{
    std::uint64_t total = 0;
    for (const auto& [keyword, parameter] : parameters)
        total += parameter.bytes.size() + kParameterOverhead;
    return total <= kMaximumEventBytes;
}

int AppendParameters(sd_bus_message* message, const Parameters& parameters)
{
    int result = sd_bus_message_open_container(message, 'a', "(uuay)");
    for (auto at = parameters.begin(); result >= 0 && at != parameters.end(); ++at)
        result = AppendParameter(message, at->first, at->second);
    return result < 0 ? result : sd_bus_message_close_container(message);
}

OSErr ReadParameters(sd_bus_message* message, Parameters& parameters)
{
    int result = sd_bus_message_enter_container(message, 'a', "(uuay)");
    std::uint64_t total = 0;
    std::uint32_t keyword = 0, type = 0;
    const void* bytes = nullptr;
    std::size_t size = 0;
    while (result > 0 && (result = ReadParameter(message, keyword, type, bytes, size)) > 0)
    {
        total += size + kParameterOverhead;
        if (total > kMaximumEventBytes)
            return bufferIsSmall;
        const auto* const first = static_cast<const unsigned char*>(bytes);
        parameters.insert_or_assign(keyword, Parameter{type, Bytes(first, first + size)});
    }
    return result < 0 ? StatusForErrno(result) : OSErr(noErr);
}

std::string& LastError()
{
    thread_local std::string error;
    return error;
}

OSErr ReadRequest(sd_bus_message* message, EventStorage& event)
{
    std::uint32_t eventClass = 0, eventID = 0;
    const int result = sd_bus_message_read(message, "uu", &eventClass, &eventID);
    if (result < 0)
        return StatusForErrno(result);
    event.eventClass = eventClass;
    event.eventID = eventID;
    return ReadParameters(message, event.parameters);
}

OSErr ReadReply(sd_bus_message* answer, Parameters& reply)
{
    LastError().clear();
    if (const sd_bus_error* const error = sd_bus_message_get_error(answer))
    {
        const std::string name = error->name ? error->name : "";
        LastError() = name + (error->message ? ": " + std::string(error->message) : "");
        return StatusForErrorName(name);
    }
    std::int16_t status = 0;
    if (sd_bus_message_has_signature(answer, kReplyTypes) <= 0 ||
        sd_bus_message_read(answer, "n", &status) < 0)
        return errAECorruptData;
    return status != noErr ? status : ReadParameters(answer, reply);
}

} // namespace AppleEvents
