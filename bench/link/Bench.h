// The figures of bench-link, by what they need. Each function registers its own.
#pragma once

#include "bench/link/RawCaller.h"

#include <string>
#include <vector>

namespace Bench
{

// Scripts as UTF-16 in native byte order, as they go over the bus.
struct Scripts
{
    std::string command;
    std::vector<std::string> delivery;
};

// What the link sends for a command and for a delivery, asked of bench-link-receiver.
Scripts RecordScripts();

// The text of a script as its bytes.
std::string BytesOf(const std::string& script);

// One command and one delivery, by the link to whoever is the server and by the raw caller to
// szRawDestination. strWhere ends the names. The scripts and the caller must live until they ran.
void RegisterExchanges(const std::string& strWhere, const Scripts& scripts, CRawCaller& caller,
                       const char* szRawDestination);

void RegisterSplitting();

// By bench-link-receiver.
void RegisterNotifications();
void RegisterMenus();
void RegisterViews();

// One delivery of the capture by a view that has been open before. Throws std::runtime_error when
// the plug-in is not told that it was delivered.
void Deliver();

} // namespace Bench
