#include "plugin/view/DeliveryWatch.h"

#include "utils/UnicodeText.h"

#include <TarvanePlatform/EventObserver.h>

#include <cstdio>
#include <cstring>
#include <exception>

namespace Tarvane
{
namespace
{

// A delivery and its events are of one thread, and so are theirs here.
thread_local CDeliveryOutcome t_outcome;
thread_local std::string t_strScript;

std::optional<std::string> TextOf(const TarvaneSeenEvent& event, AEKeyword nKeyword)
{
    for (UInt32 n = 0; n < event.parameterCount; ++n)
    {
        const TarvaneSeenParameter& parameter = event.parameters[n];
        if (parameter.keyword != nKeyword || parameter.type != typeUnicodeText)
            continue;
        std::u16string units(static_cast<std::size_t>(parameter.size) / sizeof(char16_t), 0);
        if (!units.empty())
            std::memcpy(units.data(), parameter.data, units.size() * sizeof(char16_t));
        return Utf8FromUtf16(units);
    }
    return std::nullopt;
}

void Look(const TarvaneSeenEvent* pEvent, void*)
try
{
    if (!pEvent->ended)
        t_strScript = TextOf(*pEvent, keyDirectObject).value_or("");
    else
        t_outcome.Add({t_strScript, pEvent->status, TextOf(*pEvent, 'Rslt'),
                       TextOf(*pEvent, 'Errr').value_or("")});
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "tarvane-link-view: an event was not looked at: %s\n", error.what());
}

} // namespace

void WatchDeliveries()
{
    TarvaneSetEventObserver(&Look, nullptr);
}

void BeginDelivery()
{
    t_outcome.Begin();
}

CDeliveryReport ConcludeDelivery(bool fNotDelivered)
{
    return t_outcome.Conclude(fNotDelivered);
}

} // namespace Tarvane
