// Apple events as D-Bus messages:
//
//   name       org.tarvane.AppleEvent._<signature, 8 hexadecimal digits>
//   path       /org/tarvane/AppleEvent
//   interface  org.tarvane.AppleEvent
//   method     Send (u class, u id, a(uuay) parameters) -> (n status, a(uuay) parameters)
//
// A parameter is its keyword, its descriptor type and its bytes. A keyword appears once; of two
// that are alike the later one counts.
#pragma once

#include "platform/gnustep/AppleEvents/Bus.h"
#include "platform/gnustep/AppleEvents/Storage.h"

#include <string>

namespace AppleEvents
{

inline constexpr const char* kObjectPath = "/org/tarvane/AppleEvent";
inline constexpr const char* kInterface = "org.tarvane.AppleEvent";
inline constexpr const char* kSendMember = "Send";
inline constexpr const char* kRequestTypes = "uua(uuay)";
inline constexpr const char* kReplyTypes = "na(uuay)";

/// A message over the bus's own limit costs its sender the connection. This limit stands well below
/// it and holds for each direction, on the side that sends and on the side that reads.
inline constexpr std::size_t kMaximumEventBytes = 16 * 1024 * 1024;

/// Keyword, type, length and padding, on the wire.
inline constexpr std::size_t kParameterOverhead = 16;

/// The digits follow an underscore: no element of a bus name may begin with a digit.
std::string BusNameForSignature(OSType signature);

/// Whether the parameters, kParameterOverhead for each included, stay within kMaximumEventBytes.
bool FitsInMessage(const Parameters& parameters);

/// Both return what sd-bus answers. Throws std::bad_alloc.
int AppendParameters(sd_bus_message* message, const Parameters& parameters);

/// Reads parameters to the message's end. bufferIsSmall: they are over the limit; errAECorruptData:
/// they are not what they should be. On failure the parameters are as far as they came.
OSErr ReadParameters(sd_bus_message* message, Parameters& parameters);

/// What a Send asks for. Any message may be given; one of other types fails.
OSErr ReadRequest(sd_bus_message* message, EventStorage& event);

/// The error that the last answer on this thread was, in its own words; empty for none.
std::string& LastError();

/// What came back for a Send: the status that the receiver gave, or the one that stands for the
/// bus's error. Any answer may be given; errAECorruptData for one of other types. The parameters
/// count on noErr alone.
OSErr ReadReply(sd_bus_message* answer, Parameters& reply);

} // namespace AppleEvents
