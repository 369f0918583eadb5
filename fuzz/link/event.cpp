// What the platform layer makes of a message from the bus: a request, a reply, an error. An input
// is
//
//   kind     1 byte: the message's kind, and the types that it claims for its body
//   body     the rest
#include "fuzz/Require.h"
#include "fuzz/link/RawMessages.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <algorithm>
#include <cstdint>

using namespace AppleEvents;
using Kind = CRawMessages::Kind;

namespace
{

// Ours first; and others that look like it for a part of the way.
constexpr const char* kTypes[] = {kRequestTypes, kReplyTypes, "uua(uuas)", "na(uu)",
                                  "uu",          "n",         "ay",        "a(uuay)"};

struct Message
{
    Kind kind;
    std::string strTypes;
};

Message MessageFor(std::uint8_t nByte)
{
    static constexpr Kind kKinds[] = {Kind::Call, Kind::Return, Kind::Error};
    const std::size_t nTypes = sizeof kTypes / sizeof *kTypes;
    return {kKinds[nByte / nTypes % 3], kTypes[nByte % nTypes]};
}

bool AreAlike(const Parameters& some, const Parameters& others)
{
    const auto fnSame = [](const auto& one, const auto& other)
    {
        return one.first == other.first && one.second.type == other.second.type &&
               one.second.bytes == other.second.bytes;
    };
    return some.size() == others.size() &&
           std::equal(some.begin(), some.end(), others.begin(), fnSame);
}

// What was read is what is sent on.
void SendOn(sd_bus* bus, const Parameters& parameters)
{
    sd_bus_message* created = nullptr;
    Require(sd_bus_message_new_signal(bus, &created, "/a", "a.b", "c") >= 0);
    const MessageRef message(created);
    Require(AppendParameters(created, parameters) >= 0);
    Require(sd_bus_message_seal(created, 1, 0) >= 0);
    Parameters again;
    Require(ReadParameters(created, again) == noErr);
    Require(AreAlike(parameters, again));
}

// One byte short, one byte over, and of a type that it does not have.
void ReadParameter(const AppleEvent& event, AEKeyword keyword, const Parameter& parameter)
{
    const Size size = static_cast<Size>(parameter.bytes.size());
    DescType type = 0;
    Size actual = -1;
    Require(AESizeOfParam(&event, keyword, &type, &actual) == noErr);
    Require(type == parameter.type && actual == size);
    for (const Size room : {size - 1, size, size + 1})
    {
        if (room < 0)
            continue;
        Bytes data(static_cast<std::size_t>(room));
        Require(AEGetParamPtr(&event, keyword, parameter.type, &type, data.data(), room, &actual) ==
                noErr);
        Require(actual == size);
        Require(
            std::equal(data.begin(), data.begin() + std::min(room, size), parameter.bytes.begin()));
    }
    const DescType other = parameter.type == typeChar ? typeUnicodeText : typeChar;
    Require(AEGetParamPtr(&event, keyword, other, &type, nullptr, 0, &actual) == errAECoercionFail);
}

void UseEvent(sd_bus* bus, EventStorage event)
{
    Require(FitsInMessage(event.parameters));
    SendOn(bus, event.parameters);
    const Parameters parameters = event.parameters;
    AppleEvent descriptor = NewEventDescriptor(std::move(event));
    for (const auto& [keyword, parameter] : parameters)
        ReadParameter(descriptor, keyword, parameter);
    AEDisposeDesc(&descriptor);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    if (nSize == 0)
        return 0;
    static CRawMessages line;
    const Message kind = MessageFor(pBytes[0]);
    const MessageRef message =
        line.Pass(kind.kind, kind.strTypes, {reinterpret_cast<const char*>(pBytes + 1), nSize - 1});
    EventStorage event;
    const OSErr status = kind.kind == Kind::Call ? ReadRequest(message.get(), event)
                                                 : ReadReply(message.get(), event.parameters);
    Require(kind.kind != Kind::Error || status != noErr);
    const bool fOurTypes = kind.strTypes == (kind.kind == Kind::Call ? kRequestTypes : kReplyTypes);
    Require(fOurTypes || kind.kind == Kind::Call || status != noErr);
    if (status == noErr)
        UseEvent(line.Bus(), std::move(event));
    return 0;
}
