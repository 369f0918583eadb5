#include "tests/apps/text/TextPage.h"

#include "tests/apps/text/TextCases.h"
#include "utils/UnicodeText.h"

#include <cstdio>

namespace TarvaneTest
{
namespace
{

constexpr const char* szHead = R"(# Names and texts

What becomes of the names of tracks and files, whatever is in them. The tests run each row under a plain, a German and a Turkish locale, with the real bus, server, view, files and programs, and hold this page to what they see.

- **Event**: in the UTF-16 of an event, through a script of the server and back in its reply.
- **Command**: in a script that the view's link sends, and back in what the script printed. The link's texts are UTF-8 and end at a NUL.
- **Track**: as a track's name: `tarvane-server --track`, the session file, the list that the view reads, `tarvane-link tracks --json`.
- **Title**: of that track in the view's menu. Each stands at its track's place, so a take goes to the track that was chosen.
- **Path**: as a file's name, when the link sends the file. The path stands in the script byte for byte, between double quotes and without escapes: a server gets what its Lua makes of that. What a server says against a path is shown in the view, but the command came through and the plug-in hears "delivered": a plug-in names its captures so that this column carries them.
- **Sent**: the same file, sent by `tarvane-link send`, which refuses what the quotes would not hold.
- **Capture**: as the name of a file that `tarvane-host` plays. The capture is named after it, without what stands behind its last point, and in a form that every server can be sent; it gets a number, and 230 bytes are the most that its name takes over.
- **Entry**: as the name of an entry of a session file, saved and loaded, and through `tarvane-session to-json` and `from-json`. The values of entries hold any bytes.

"yes" is carried as it was; "becomes" tells what it is changed to; "no" gives the words of the refusal; "-" is what cannot be.

| Text | | Event | Command | Track | Title | Path | Sent | Capture | Entry |
|---|---|---|---|---|---|---|---|---|---|
)";

std::string Number(const char* szForm, unsigned nValue)
{
    char szText[16];
    std::snprintf(szText, sizeof szText, szForm, nValue);
    return szText;
}

// Plain characters as they are, and all others by their numbers: some of them would turn the line
// around that they stand in, and some cannot be seen.
std::string Shown(const std::string& strText)
{
    constexpr std::size_t kMost = 60;
    if (strText.size() > kMost)
        return Shown(strText.substr(0, 3)) + "... (" + std::to_string(strText.size()) + " bytes)";
    std::string strShown;
    for (std::size_t nAt = 0; nAt < strText.size();)
    {
        std::size_t nBytes = 1;
        while (nBytes < 4 && !Tarvane::IsUtf8(strText.substr(nAt, nBytes)))
            ++nBytes;
        const std::string strOne = strText.substr(nAt, nBytes);
        const auto nFirst = static_cast<unsigned char>(strOne[0]);
        const bool fWhole = Tarvane::IsUtf8(strOne);
        if (!fWhole)
            strShown += Number("\\x%02X", nFirst);
        else if (nFirst < 0x20 || nFirst == 0x7F || strOne.size() > 1)
        {
            for (const char16_t nUnit : Tarvane::Utf16FromUtf8(strOne))
                strShown += Number("\\u%04X", nUnit);
        }
        else
            strShown += (nFirst == '|' ? "\\" : "") + strOne;
        nAt += fWhole ? strOne.size() : 1;
    }
    return strShown;
}

// Two backquotes, so that one may stand inside.
std::string Code(const std::string& strText)
{
    return strText.empty() ? "" : "`` " + Shown(strText) + " ``";
}

std::string Cell(const Fate& fate)
{
    switch (fate.kind)
    {
    case Fate::kCarried:
        return "yes";
    case Fate::kChanged:
        return "becomes " + Code(fate.strText);
    case Fate::kRefused:
        return "no: \"" + Shown(fate.strText) + "\"";
    case Fate::kImpossible:
        break;
    }
    return "-";
}

} // namespace

std::string TextPage()
{
    std::string strPage = szHead;
    for (const TextCase& text : kTextCases)
    {
        strPage += "| " + std::string(text.szName) + " | " + Code(text.strText) + " |";
        const Fate title = text.track.kind == Fate::kCarried ? text.title : Impossible();
        for (const Fate* pFate : {&text.event, &text.command, &text.track, &title, &text.path,
                                  &text.sent, &text.dub, &text.entry})
            strPage += " " + Cell(*pFate) + " |";
        strPage += "\n";
    }
    return strPage;
}

} // namespace TarvaneTest
