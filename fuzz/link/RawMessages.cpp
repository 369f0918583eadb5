#include "fuzz/link/RawMessages.h"

#include "fuzz/Require.h"

#include <cstdint>
#include <string_view>

#include <sys/socket.h>
#include <unistd.h>

namespace
{

void Pad(std::string& bytes, std::size_t nMultiple)
{
    bytes.resize((bytes.size() + nMultiple - 1) / nMultiple * nMultiple);
}

void AppendNumber(std::string& bytes, std::uint32_t n)
{
    Pad(bytes, 4);
    for (int nShift = 0; nShift < 32; nShift += 8)
        bytes += static_cast<char>(n >> nShift);
}

// A header field: code, type of the value, value. A signature's length has one byte, that of other
// texts four.
void AppendText(std::string& fields, char cCode, char cType, std::string_view text)
{
    Pad(fields, 8);
    fields += {cCode, 1, cType, 0};
    if (cType == 'g')
        fields += static_cast<char>(text.size());
    else
        AppendNumber(fields, static_cast<std::uint32_t>(text.size()));
    fields += std::string(text) + '\0';
}

void AppendReplySerial(std::string& fields)
{
    Pad(fields, 8);
    fields += {5, 1, 'u', 0};
    AppendNumber(fields, 1);
}

std::string FieldsOf(CRawMessages::Kind kind, const std::string& types)
{
    std::string fields;
    if (kind == CRawMessages::Kind::Call)
    {
        AppendText(fields, 1, 'o', "/org/tarvane/AppleEvent");
        AppendText(fields, 3, 's', "Send");
    }
    else
        AppendReplySerial(fields);
    if (kind == CRawMessages::Kind::Error)
        AppendText(fields, 4, 's', "org.tarvane.Error");
    AppendText(fields, 8, 'g', types);
    return fields;
}

// Byte order, type, flags, version; size of the body; serial; fields; body.
std::string MessageOf(CRawMessages::Kind kind, const std::string& types, const std::string& body)
{
    static constexpr char kCallWithoutReply = 1;
    const char cType = static_cast<char>(static_cast<int>(kind) + 1);
    const std::string fields = FieldsOf(kind, types);
    std::string message{'l', cType, kCallWithoutReply, 1};
    AppendNumber(message, static_cast<std::uint32_t>(body.size()));
    AppendNumber(message, 7);
    AppendNumber(message, static_cast<std::uint32_t>(fields.size()));
    message += fields;
    Pad(message, 8);
    return message + body;
}

void Write(int nFile, const std::string& bytes)
{
    Require(write(nFile, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
}

} // namespace

CRawMessages::CRawMessages()
{
    int ends[2];
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) == 0);
    m_nEnd = ends[1];
    sd_bus* bus = nullptr;
    Require(sd_bus_new(&bus) >= 0);
    m_bus.reset(bus);
    Require(sd_bus_set_fd(bus, ends[0], ends[0]) >= 0);
    Require(sd_bus_set_server(bus, 1, sd_id128_t{{1}}) >= 0);
    Require(sd_bus_set_anonymous(bus, 1) >= 0);
    Require(sd_bus_add_filter(bus, nullptr, Keep, this) >= 0);
    Require(sd_bus_start(bus) >= 0);
    Write(m_nEnd, std::string(1, '\0') + "AUTH ANONYMOUS\r\nBEGIN\r\n");
    while (sd_bus_is_ready(bus) == 0)
        Require(sd_bus_process(bus, nullptr) >= 0);
}

CRawMessages::~CRawMessages()
{
    close(m_nEnd);
}

AppleEvents::MessageRef CRawMessages::Pass(Kind kind, const std::string& types,
                                           const std::string& body)
{
    Write(m_nEnd, MessageOf(kind, types, body));
    while (!m_passed)
        Require(sd_bus_process(m_bus.get(), nullptr) >= 0);
    return std::move(m_passed);
}

int CRawMessages::Keep(sd_bus_message* message, void* self, sd_bus_error*)
{
    static_cast<CRawMessages*>(self)->m_passed.reset(sd_bus_message_ref(message));
    return 1;
}
