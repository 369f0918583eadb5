#include "apps/replay/Misplaced.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/text/Timecode.h"

#include <filesystem>
#include <locale>
#include <sstream>

namespace Tarvane::Replay
{
namespace
{

struct Take
{
    double dPosition; // on the host's timeline, samples
    double dSampleRate;
};

// The path that stands in quotes behind the call; empty without the call.
std::string PathAdded(const std::string& strScript)
{
    const std::size_t nCall = strScript.find("AddAudioRegion(");
    const std::size_t nQuote =
        nCall == std::string::npos ? std::string::npos : strScript.find('"', nCall);
    if (nQuote == std::string::npos)
        return {};
    return strScript.substr(nQuote + 1, strScript.find('"', nQuote + 1) - nQuote - 1);
}

// Seconds; empty when the server did not tell them.
std::optional<double> OffsetIn(const Exchange& exchange)
{
    const auto error = exchange.reply.find('Errr');
    const auto result = exchange.reply.find('Rslt');
    if (exchange.nStatus != noErr || result == exchange.reply.end() ||
        (error != exchange.reply.end() && !error->second.strBytes.empty()))
        return std::nullopt;
    std::istringstream text(result->second.Text());
    text.imbue(std::locale::classic());
    double dSeconds = 0.0;
    return text >> dSeconds ? std::optional(dSeconds) : std::nullopt;
}

class CPlaces
{
public:
    void NoteRead(const RecordedJson& json)
    {
        if (json.at("property").get<long long>() != TNProperty_ElementInfo ||
            !json.contains("fields"))
            return;
        const RecordedJson& fields = json.at("fields");
        for (const char* szField : {"szDubPath", "tDub.dPosition", "dSampleRate"})
        {
            if (!fields.contains(szField))
                return;
        }
        const RecordedJson& path = fields.at("szDubPath");
        if (path.is_string() && fields.at("tDub.dPosition").is_number() &&
            fields.at("dSampleRate").is_number())
            m_takes[path] = {fields.at("tDub.dPosition"), fields.at("dSampleRate")};
    }

    void NoteReply(const Exchange& exchange)
    {
        const std::string strScript = exchange.Script();
        if (strScript.find("GetLinkSMPTEOffset(") != std::string::npos)
        {
            const std::optional<double> offset = OffsetIn(exchange);
            m_fTold = offset.has_value();
            if (m_fTold)
                m_told = offset;
        }
        const std::string strPath = PathAdded(strScript);
        if (strPath.empty() || m_fTold || exchange.nStatus != noErr ||
            exchange.reply.count('Rslt') == 0)
            return;
        Misplaced misplaced{strPath, std::nullopt};
        const auto take = m_takes.find(strPath);
        if (m_told && take != m_takes.end())
            misplaced.place = *m_told * take->second.dSampleRate + take->second.dPosition;
        m_misplaced[exchange.nNumber] = misplaced;
    }

    std::map<long long, Misplaced> m_misplaced;

private:
    std::map<std::string, Take> m_takes; // by their paths
    std::optional<double> m_told;        // last
    bool m_fTold = true;                 // when it was asked last
};

} // namespace

std::map<long long, Misplaced> FindMisplaced(const Recording& recording)
{
    std::map<long long, const Exchange*> exchanges;
    for (const Exchange& exchange : recording.exchanges)
        exchanges[exchange.nNumber] = &exchange;
    CPlaces places;
    for (const Line& line : recording.lines)
    {
        if (line.strKind == "read")
            places.NoteRead(line.json);
        else if (line.strKind == "reply")
            places.NoteReply(*exchanges.at(line.json.at("number").get<long long>()));
    }
    return places.m_misplaced;
}

std::string MisplacedText(const Misplaced& misplaced)
{
    return std::filesystem::path(misplaced.strPath).filename().string() +
           " was placed without the offset, which the server did not tell" +
           (misplaced.place ? "; it should stand at sample " + FormatSamples(*misplaced.place)
                            : "") +
           ".";
}

} // namespace Tarvane::Replay
