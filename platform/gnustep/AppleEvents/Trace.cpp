#include "platform/gnustep/AppleEvents/Trace.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

namespace AppleEvents
{
namespace
{

std::string Now()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    char text[64];
    std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%03ldZ", now.tv_nsec / 1'000'000);
    return text;
}

std::string Quoted(UInt32 code)
{
    std::string text = "'";
    for (int shift = 24; shift >= 0; shift -= 8)
    {
        const char next = char(code >> shift);
        text += next >= ' ' && next <= '~' ? next : '.';
    }
    return text + "'";
}

void AppendUtf8(std::string& text, char32_t character)
{
    const auto rest = [&](int shift) { text += char(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80)
    {
        text += char(character);
    }
    else if (character < 0x800)
    {
        text += char(0xC0 | character >> 6);
        rest(0);
    }
    else if (character < 0x10000)
    {
        text += char(0xE0 | character >> 12);
        rest(6);
        rest(0);
    }
    else
    {
        text += char(0xF0 | character >> 18);
        rest(12);
        rest(6);
        rest(0);
    }
}

// The character at `at`, and past it. A surrogate without its partner is U+FFFD.
char32_t NextCharacter(std::u16string_view units, std::size_t& at)
{
    const char16_t unit = units[at++];
    if (unit < 0xD800 || unit > 0xDFFF)
        return unit;
    const bool fPaired =
        unit < 0xDC00 && at < units.size() && units[at] >= 0xDC00 && units[at] <= 0xDFFF;
    return fPaired ? 0x10000 + (char32_t(unit - 0xD800) << 10) + (units[at++] - 0xDC00) : 0xFFFD;
}

// Indented; a control character, which could upset a terminal, is a point.
std::string Indented(std::u16string_view units)
{
    static constexpr const char* kIndent = "    ";
    std::string text = kIndent;
    for (std::size_t at = 0; at < units.size();)
    {
        const char32_t character = NextCharacter(units, at);
        if (character == '\n' && at < units.size())
            text += std::string("\n") + kIndent;
        else if (character == '\t' || (character >= ' ' && (character < 0x7F || character > 0x9F)))
            AppendUtf8(text, character);
        else if (character != '\n')
            text += '.';
    }
    return text + "\n";
}

std::u16string UnitsOf(const TarvaneSeenParameter& parameter)
{
    std::u16string units(std::size_t(parameter.size) / sizeof(char16_t), u'\0');
    if (!units.empty())
        std::memcpy(units.data(), parameter.data, units.size() * sizeof(char16_t));
    return units;
}

std::size_t BytesIn(const TarvaneSeenEvent& event)
{
    std::size_t total = 0;
    for (UInt32 i = 0; i < event.parameterCount; i++)
        total += std::size_t(event.parameters[i].size);
    return total;
}

std::string Listing(const TarvaneSeenEvent& event)
{
    std::string text;
    for (UInt32 i = 0; i < event.parameterCount; i++)
    {
        const TarvaneSeenParameter& parameter = event.parameters[i];
        text += "  " + Quoted(parameter.keyword) + " " + Quoted(parameter.type) + " " +
                std::to_string(parameter.size) + " bytes\n";
        if (parameter.type == typeUnicodeText && parameter.size > 0)
            text += Indented(UnitsOf(parameter));
    }
    return text;
}

std::string Beginning(const TarvaneSeenEvent& event)
{
    return " out to " + Quoted(event.target) + ", " + Quoted(event.eventClass) + " " +
           Quoted(event.eventID) + ", " + std::to_string(BytesIn(event)) + " bytes";
}

std::string End(const TarvaneSeenEvent& event)
{
    // Of whole numbers: the point is one in every locale.
    char elapsed[64];
    std::snprintf(elapsed, sizeof elapsed, "%llu.%03llu",
                  static_cast<unsigned long long>(event.microseconds / 1000),
                  static_cast<unsigned long long>(event.microseconds % 1000));
    return " in status " + std::to_string(event.status) + ", " + std::to_string(BytesIn(event)) +
           " bytes, after " + elapsed + " ms";
}

} // namespace

bool IsTraceOn()
{
    const char* const setting = std::getenv("TARVANE_AE_TRACE");
    return setting && std::string_view(setting) == "1";
}

void TraceEvent(const TarvaneSeenEvent* event, void*)
{
    const std::string record = Now() + " event " + std::to_string(event->number) +
                               (event->ended ? End(*event) : Beginning(*event)) + "\n" +
                               Listing(*event);
    std::fwrite(record.data(), 1, record.size(), stderr);
    std::fflush(stderr);
}

} // namespace AppleEvents
