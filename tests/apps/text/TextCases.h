// Texts that break programs, and what becomes of each wherever a track's name or a file's path
// passes. docs/text.md is made of this table.
#pragma once

#include <string>
#include <string_view>

namespace TarvaneTest
{

struct Fate
{
    enum Kind
    {
        kCarried,   ///< arrives as it was
        kChanged,   ///< arrives as strText
        kRefused,   ///< with words that hold strText
        kImpossible ///< nothing can be called that here
    };
    Kind kind = kCarried;
    std::string strText = {};
};

inline Fate Changed(std::string_view text)
{
    return {Fate::kChanged, std::string(text)};
}
inline Fate Refused(std::string_view words)
{
    return {Fate::kRefused, std::string(words)};
}
inline Fate Impossible()
{
    return {Fate::kImpossible};
}

struct TextCase
{
    const char* szName;
    std::string strText; ///< bytes; a unit of UTF-16 without its partner as the three bytes of its
                         ///< number

    Fate event = {}; ///< in the units of an event's 'utxt', through a script and back in its reply
    Fate command = {}; ///< in a script of the link, and back in what it printed
    Fate track = {};   ///< a track of the server, as it is listed, in JSON too
    Fate title = {};   ///< of that track in the view's menu
    Fate path = {};    ///< a file, sent by the script link
    Fate sent = {};    ///< the same file, sent by tarvane-link
    Fate dub = {};     ///< a sound file, captured by tarvane-host: the name of the capture
    Fate entry = {};   ///< the name of an entry of a session; its values hold any bytes
};

inline std::string Repeat(std::string_view text, std::size_t nTimes)
{
    std::string strText;
    while (nTimes-- > 0)
        strText += text;
    return strText;
}

inline constexpr const char* kUnnameable = "contains a line end or another control character";
inline constexpr const char* kNotUtf8 = "is not UTF-8";
inline constexpr const char* kOpenQuote = "unfinished string";
inline constexpr const char* kUnquotable = "cannot be sent; rename";

/// A control character that neither ends a line nor a text.
inline TextCase Control(const char* szName, std::string_view text)
{
    return {.szName = szName,
            .strText = "a" + std::string(text) + "b",
            .track = Refused(kUnnameable),
            .dub = Changed("a_b")};
}

/// Bytes that are no UTF-8; each stray one comes out of a conversion as U+FFFD.
inline TextCase Stray(const char* szName, std::string_view text)
{
    const std::string strRepaired = "a" + Repeat("\xEF\xBF\xBD", text.size()) + "b";
    return {.szName = szName,
            .strText = "a" + std::string(text) + "b",
            .event = Impossible(),
            .command = Refused("AEError ID:-50"),
            .track = Refused(kNotUtf8),
            .path = Refused("AEError ID:-50"),
            .sent = Refused(kNotUtf8),
            .dub = Changed(strRepaired)};
}

/// Half of a character in UTF-16. It can be in an event, and in no UTF-8.
inline TextCase Half(const char* szName, std::string_view text)
{
    TextCase half = Stray(szName, text);
    half.event = Changed("a" + Repeat("\xEF\xBF\xBD", text.size() / 3) + "b");
    return half;
}

using namespace std::string_literals;

inline const TextCase kTextCases[] = {
    {.szName = "plain", .strText = "Vox 1"},

    {.szName = "accent, composed", .strText = "Caf\u00E9"},
    {.szName = "accent, decomposed", .strText = "Cafe\u0301"},
    {.szName = "marks upon marks", .strText = "Z\u0351\u036B\u0343\u036A\u0302\u036Bo\u0327\u0330"},
    {.szName = "Hangul, composed", .strText = "\uD55C\uAE00"},
    {.szName = "Hangul, decomposed", .strText = "\u1112\u1161\u11AB\u1100\u1173\u11AF"},
    {.szName = "ligature and sharp s", .strText = "\uFB01n stra\u00DFe \u1E9E"},
    {.szName = "Turkish i with and without a dot", .strText = "I\u0131 \u0130i TITLE title"},
    {.szName = "Chinese", .strText = "\u58F0\u97F3"},
    {.szName = "Thai", .strText = "\u0E40\u0E2A\u0E35\u0E22\u0E07"},

    {.szName = "Hebrew with points", .strText = "\u05E9\u05B8\u05C1\u05DC\u05D5\u05B9\u05DD"},
    {.szName = "Arabic with marks", .strText = "\u0645\u064F\u062D\u064E\u0645\u0651\u062F"},
    {.szName = "both directions", .strText = "Mic \u05D0 1 \u0628 dub"},
    {.szName = "a direction overridden", .strText = "gpj\u202Egpj\u202C take"},
    {.szName = "a direction isolated", .strText = "\u2067Vox\u2069 \u200F\u200E"},

    {.szName = "emoji", .strText = "Mic \U0001F399"},
    {.szName = "emoji of several", .strText = "\U0001F468\u200D\U0001F469\u200D\U0001F467"},
    {.szName = "emoji with a skin", .strText = "\U0001F44D\U0001F3FD \u2764\uFE0F"},
    {.szName = "flags", .strText = "\U0001F1EF\U0001F1F5\U0001F1E9\U0001F1EA"},
    {.szName = "the last character", .strText = "\U0010FFFD \U0010FFFF"},
    {.szName = "private use", .strText = "\uF8FF \uE000"},
    {.szName = "no characters", .strText = "a\uFFFF\uFDD0"},
    {.szName = "the replacement character", .strText = "a\uFFFDb"},

    {.szName = "a byte order mark first",
     .strText = "\uFEFFVox",
     // Foundation's; the item is there, and at its place.
     .title = Changed("Vox")},
    {.szName = "a byte order mark inside", .strText = "V\uFEFFox"},
    {.szName = "a turned byte order mark first", .strText = "\uFFFEVox"},
    {.szName = "spaces without width", .strText = "a\u200B\u200C\u2060b"},
    {.szName = "spaces of other widths", .strText = "a\u00A0\u3000\u2003b"},
    {.szName = "line and paragraph separator", .strText = "a\u2028b\u2029c"},
    {.szName = "next line, of the second control block", .strText = "a\u0085b"},

    {.szName = "a single quote", .strText = "it's"},
    {.szName = "a double quote",
     .strText = "6\" reel",
     .path = Refused("')' expected near 'reel'"),
     .sent = Refused(kUnquotable),
     .dub = Changed("6_ reel")},
    {.szName = "a quote that goes on as a script",
     .strText = "x\", true, false, 7, 0, 1) --",
     .path = Refused("x does not exist"),
     .sent = Refused(kUnquotable),
     .dub = Changed("x_, true, false, 7, 0, 1) --")},
    {.szName = "typographic quotes", .strText = "\u201EVox\u201C \u00ABa\u00BB"},
    {.szName = "a backslash before a letter of meaning",
     .strText = "a\\nb",
     .path = Refused("a\nb does not exist"),
     .sent = Refused(kUnquotable),
     .dub = Changed("a_nb")},
    {.szName = "a backslash before digits",
     .strText = "\\066ox",
     .path = Refused("Box does not exist"),
     .sent = Refused(kUnquotable),
     .dub = Changed("_066ox")},
    {.szName = "a backslash before another letter",
     .strText = "a\\qb",
     .path = Refused("invalid escape sequence near"),
     .sent = Refused(kUnquotable),
     .dub = Changed("a_qb")},
    {.szName = "two backslashes",
     .strText = "a\\\\b",
     .path = Refused("a\\b does not exist"),
     .sent = Refused(kUnquotable),
     .dub = Changed("a__b")},
    {.szName = "a backslash last",
     .strText = "a\\",
     .path = Refused(kOpenQuote),
     .sent = Refused(kUnquotable),
     .dub = Changed("a_")},
    {.szName = "formats", .strText = "%n%s%d %@ 100% %1$s"},
    {.szName = "a shell's", .strText = "$(x) `y` ${HOME} ~ * ? ; | & < > !"},
    {.szName = "Lua's", .strText = "]] ]=] -- --[[ [[ #t"},
    {.szName = "markup", .strText = "<b>&amp; {'a':[1]"},
    {.szName = "an option's", .strText = "--help"},
    {.szName = "decimal commas", .strText = "1,5 1.234,5", .dub = Changed("1,5 1")},
    {.szName = "a number", .strText = "007"},
    {.szName = "a point first", .strText = ".hidden"},
    {.szName = "points", .strText = "a..b", .dub = Changed("a.")},
    {.szName = "a slash",
     .strText = "4/4",
     .path = Refused("does not exist"),
     .sent = Refused("there is no file"),
     .dub = Impossible()},
    {.szName = "colons", .strText = "Macintosh HD:Vox:1"},

    {.szName = "nothing",
     .strText = "",
     .track = Refused("is empty"),
     .path = Refused("is not a file"),
     .sent = Impossible(),
     .dub = Impossible()},
    {.szName = "a blank", .strText = " "},
    {.szName = "blanks", .strText = "   "},
    {.szName = "blanks around", .strText = "  Vox  "},

    {.szName = "NUL",
     .strText = "a\0b"s,
     .event = Changed("a b"),
     .command = Refused("unfinished long string"),
     .track = Impossible(),
     .path = Refused(kOpenQuote),
     .sent = Impossible(),
     .dub = Impossible(),
     .entry = Changed("a")},
    Control("tab", "\t"),
    Control("bell", "\a"),
    Control("vertical tab", "\v"),
    Control("form feed", "\f"),
    Control("escape", "\x1B"),
    Control("delete", "\x7F"),
    {.szName = "line feed",
     .strText = "a\nb",
     .event = Changed("a b"),
     .command = Changed("a b"),
     .track = Refused(kUnnameable),
     .path = Refused(kOpenQuote),
     .sent = Refused(kUnquotable),
     .dub = Changed("a_b")},
    {.szName = "carriage return",
     .strText = "a\rb",
     .event = Changed("a b"),
     .command = Changed("a b"),
     .track = Refused(kUnnameable),
     .path = Refused(kOpenQuote),
     .sent = Refused(kUnquotable),
     .dub = Changed("a_b")},
    {.szName = "both line ends",
     .strText = "a\r\nb",
     .event = Changed("a b"),
     .command = Changed("a b"),
     .track = Refused(kUnnameable),
     .path = Refused(kOpenQuote),
     .sent = Refused(kUnquotable),
     .dub = Changed("a__b")},

    Stray("a byte of no UTF-8", "\xFF"),
    Stray("Latin 1", "\xE9"),
    Stray("a character cut short", "\xE5\xA3"),
    Stray("a longer form than need be", "\xC0\xAF"),
    Stray("beyond the last character", "\xF4\x90\x80\x80"),
    Half("the first half of a pair", "\xED\xA0\xBD"),
    Half("the second half of a pair", "\xED\xB8\x80"),
    Half("the halves in the wrong order", "\xED\xB8\x80\xED\xA0\xBD"),

    {.szName = "255 bytes", .strText = Repeat("x", 255), .dub = Changed(Repeat("x", 230))},
    {.szName = "255 bytes of three each",
     .strText = Repeat("\u58F0", 85),
     .dub = Changed(Repeat("\u58F0", 76))},
    {.szName = "256 bytes",
     .strText = Repeat("x", 256),
     .path = Refused("File name too long"),
     .sent = Refused("there is no file"),
     .dub = Impossible()},
    {.szName = "999 bytes",
     .strText = Repeat("x", 999),
     .path = Refused("File name too long"),
     .sent = Refused("there is no file"),
     .dub = Impossible()},
    {.szName = "1000 bytes",
     .strText = Repeat("x", 1000),
     .track = Refused("is longer than 999 bytes"),
     .path = Refused("File name too long"),
     .sent = Refused("there is no file"),
     .dub = Impossible()},
};

} // namespace TarvaneTest
