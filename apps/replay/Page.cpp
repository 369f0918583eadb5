#include "apps/replay/Page.h"

#include "apps/replay/Misplaced.h"
#include "apps/replay/PageRow.h"
#include "apps/replay/PageText.h"

#include <algorithm>

namespace Tarvane::Replay
{
namespace
{

// From this on a stretch without anything is drawn, in microseconds.
constexpr long long kGap = 50'000;

// The two colours can be told apart with every kind of sight; errors have a mark and a thicker line
// beside.
constexpr char szStyle[] = R"(<style>
body { font: 14px sans-serif; color: #111; background: #fff; margin: 16px; }
h1 { font-size: 20px; }
.heads { position: sticky; top: 0; background: #fff; }
svg { display: block; font: 12px sans-serif; }
summary { display: block; cursor: pointer; }
summary::-webkit-details-marker { display: none; }
summary:hover, details[open] > summary { background: #eef4f9; }
details > pre { margin: 0 0 8px 104px; padding: 8px; background: #f4f4f4; border-left: 3px solid #999;
  white-space: pre-wrap; overflow-wrap: anywhere; max-width: 930px; }
.flaw { border-left: 4px solid #b84a00; padding-left: 8px; }
.note { margin-left: 104px; font-weight: bold; color: #b84a00; }
line.lane { stroke: #bbb; stroke-width: 1; }
line.good { stroke: #0072b2; stroke-width: 1.5; }
line.bad { stroke: #b84a00; stroke-width: 3; }
line.answer { stroke-dasharray: 7 4; }
line.signal { stroke-dasharray: 2 3; }
polygon.good { fill: #0072b2; }
polygon.bad { fill: #b84a00; }
rect.open { fill: #cfe2ef; stroke: #0072b2; stroke-width: 0.5; }
rect.head { fill: #f4f4f4; stroke: #777; }
text { fill: #111; }
text.time, text.gap { text-anchor: end; font-size: 11px; fill: #555; }
text.gap { font-style: italic; }
text.label, text.name { text-anchor: middle; }
text.name { font-weight: bold; }
text.wrong { fill: #b84a00; font-weight: bold; }
</style>
)";

bool IsError(const Exchange& exchange)
{
    const auto found = exchange.reply.find('Errr');
    return !exchange.fEnded || exchange.nStatus != noErr ||
           (found != exchange.reply.end() && !found->second.strBytes.empty());
}

std::string Introduction(const Recording& recording, std::size_t nMisplaced)
{
    const auto nErrors =
        std::count_if(recording.exchanges.begin(), recording.exchanges.end(), IsError);
    const long long nEnd = recording.lines.empty() ? 0 : recording.lines.back().nTime;
    std::string strText = "<h1>A recording of " + Escaped(recording.strProgram) +
                          "</h1>\n<p>Begun " + Escaped(recording.strStarted) + ", " +
                          SecondsText(nEnd) + " long; " +
                          std::to_string(recording.exchanges.size()) + " events, " +
                          std::to_string(nErrors) + " of them failed.</p>\n";
    if (nMisplaced > 0)
        strText +=
            "<p class=\"flaw\">Takes placed without the offset: " + std::to_string(nMisplaced) +
            ".</p>\n";
    if (recording.nFlaws > 0)
        strText += "<p class=\"flaw\">The recording is damaged, " +
                   Escaped(recording.strFirstFlaw) +
                   "; lines left out: " + std::to_string(recording.nFlaws) + ".</p>\n";
    return strText +
           "<p>Time runs downwards. A solid arrow asks or writes, a dashed one answers, a dotted "
           "one is a notification; \xE2\x9C\x98 and a thick line mark what failed. While an event "
           "is under way, the server's lane is a bar. A row opens to tell all of it.</p>\n";
}

std::string Row(const PageRow& row)
{
    return "<details><summary>" + DrawRow(row) + "</summary><pre>" + Escaped(row.strDetails) +
           "</pre></details>\n";
}

std::string Note(const std::string& strText)
{
    return "<p class=\"note\">" + Escaped(strText) + "</p>\n";
}

std::string Lost(const Line& line)
{
    return Note(std::to_string(line.json.at("count").get<long long>()) +
                " lines are missing here: the disk took nothing for a long time.");
}

std::string Waiting(const Line& line, const std::map<long long, const Exchange*>& exchanges)
{
    const Exchange& exchange = *exchanges.at(line.json.at("number").get<long long>());
    return Note("Still no answer to " + ShortName(exchange) + ", for " +
                SecondsText(std::max(0LL, line.nTime - exchange.nTime)) + " now.");
}

// What had no answer when the recording ended.
std::string OpenEnd(const Recording& recording)
{
    std::string strText;
    for (const Exchange& exchange : recording.exchanges)
    {
        if (!exchange.fEnded)
            strText += Note("The recording ends without an answer to " + ShortName(exchange) +
                            ", which has gone out at " + SecondsText(exchange.nTime) + ".");
    }
    return strText;
}

} // namespace

std::string DrawPage(const Recording& recording)
{
    std::map<long long, const Exchange*> exchanges;
    for (const Exchange& exchange : recording.exchanges)
        exchanges[exchange.nNumber] = &exchange;

    const std::map<long long, Misplaced> misplaced = FindMisplaced(recording);

    std::string strPage(kPageStart);
    strPage += "<title>A recording of " + Escaped(recording.strProgram) + "</title>\n" + szStyle +
               "</head>\n<body>\n" + Introduction(recording, misplaced.size()) +
               "<div class=\"heads\">" + DrawHeads() + "</div>\n";
    long long nBefore = 0;
    int nOpen = 0;
    for (const Line& line : recording.lines)
    {
        if (line.nTime - nBefore >= kGap)
            strPage += DrawGap(line.nTime - nBefore, nOpen > 0);
        nBefore = std::max(nBefore, line.nTime);
        if (line.strKind == "lost")
        {
            strPage += Lost(line);
            continue;
        }
        if (line.strKind == "waiting")
        {
            strPage += Waiting(line, exchanges);
            continue;
        }
        PageRow row = RowOf(line, exchanges);
        row.fOpen = nOpen > 0;
        strPage += Row(row);
        if (line.strKind == "reply")
        {
            --nOpen;
            const auto found = misplaced.find(line.json.at("number").get<long long>());
            if (found != misplaced.end())
                strPage += Note(MisplacedText(found->second));
        }
        else if (line.strKind == "event" &&
                 exchanges.at(line.json.at("number").get<long long>())->fEnded)
        {
            ++nOpen;
        }
    }
    return strPage + OpenEnd(recording) + "</body>\n</html>\n";
}

} // namespace Tarvane::Replay
