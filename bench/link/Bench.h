// The figures of bench-link, by what they need. Each function registers its own.
#pragma once

#include "bench/link/RawCaller.h"

#include <string>
#include <vector>

namespace Bench
{

/// Scripts as UTF-16 in native byte order, as they go over the bus.
struct Scripts
{
    std::string command;
    std::vector<std::string> delivery;
};

/// What the link sends for a command and for a delivery, asked of bench-link-receiver.
Scripts RecordScripts();

/// The text of a script as its bytes.
std::string BytesOf(const std::string& script);

/// One command and one delivery to whoever is the server, by the link and by the raw caller.
/// strWhere ends the names. The scripts and the caller must live until they ran. A repetition has
/// nDeliveries: 1 for a server that knows a capture again.
void RegisterExchanges(const std::string& strWhere, const Scripts& scripts, CRawCaller& caller,
                       int nDeliveries);

/// The raw caller's part of these alone, to a destination of its own.
void RegisterRawTrips(const std::string& strWhere, const Scripts& scripts, CRawCaller& caller,
                      const char* szDestination, int nDeliveries);

void RegisterSplitting();

/// By bench-link-receiver.
void RegisterNotifications();
void RegisterMenus();
void RegisterViews();

/// One delivery of the capture by a view that has been open before. Throws std::runtime_error when
/// the plug-in is not told that it was delivered.
void Deliver();

} // namespace Bench
