#include "apps/editor/ArdourSession.h"

#include "apps/editor/Editor.h"

#include <algorithm>
#include <sstream>

namespace Tarvane::Editor
{

namespace
{

constexpr std::int64_t kClockTicksPerSecond = 282'240'000;
constexpr int kVersion = 7002;

// Times of Ardour: ticks of a clock that divides by the usual rates.
std::string Ticks(std::int64_t nSamples, std::int32_t nRate)
{
    return "a" + std::to_string(nSamples * (kClockTicksPerSecond / nRate));
}

std::string KeyOf(const std::vector<std::int64_t>& sources, const std::string& strStart,
                  const std::string& strLength)
{
    std::string strKey = strStart + " " + strLength;
    for (std::int64_t nSource : sources)
        strKey += " " + std::to_string(nSource);
    return strKey;
}

using Attributes = std::vector<std::pair<const char*, std::string>>;

pugi::xml_node Add(pugi::xml_node parent, const char* szName, const Attributes& attributes)
{
    pugi::xml_node node = parent.append_child(szName);
    for (const auto& [szAttribute, strValue] : attributes)
        node.append_attribute(szAttribute) = strValue.c_str();
    return node;
}

std::string Printed(pugi::xml_node node, unsigned nDepth)
{
    std::ostringstream text;
    node.print(text, "  ", pugi::format_indent, pugi::encoding_utf8, nDepth);
    return text.str();
}

std::size_t AudioPorts(pugi::xml_node route, const char* szDirection)
{
    std::size_t nPorts = 0;
    for (pugi::xml_node io : route.children("IO"))
    {
        if (io.attribute("direction").value() != std::string(szDirection))
            continue;
        for (pugi::xml_node port : io.children("Port"))
            nPorts += port.attribute("type").value() == std::string("audio");
    }
    return nPorts;
}

std::string Number(std::int64_t n)
{
    return std::to_string(n);
}

void AddAmp(pugi::xml_node route, std::int64_t nId)
{
    pugi::xml_node amp = Add(route, "Processor",
                             {{"id", Number(nId)},
                              {"name", "Amp"},
                              {"active", "1"},
                              {"user-latency", "0"},
                              {"use-user-latency", "0"},
                              {"type", "amp"}});
    Add(amp.append_child("Automation"), "AutomationList",
        {{"automation-id", "gain"},
         {"id", Number(nId + 1)},
         {"interpolation-style", "Exponential"},
         {"time-domain", "AudioTime"},
         {"state", "Off"}});
    Add(amp, "Controllable",
        {{"name", "gaincontrol"}, {"id", Number(nId + 2)}, {"flags", "GainLike"}, {"value", "1"}});
}

// Without the panner, which would take three decibels off a take of one channel.
void AddOutputs(pugi::xml_node route, const std::string& strName, std::int64_t nId)
{
    pugi::xml_node outs = Add(route, "Processor",
                              {{"id", Number(nId)},
                               {"name", strName},
                               {"active", "1"},
                               {"user-latency", "0"},
                               {"use-user-latency", "0"},
                               {"own-input", "1"},
                               {"own-output", "0"},
                               {"output", strName},
                               {"type", "main-outs"},
                               {"role", "Main"}});
    Add(outs, "PannerShell", {{"bypassed", "1"}, {"user-panner", ""}, {"linked-to-route", "1"}});
}

pugi::xml_node AddIO(pugi::xml_node route, const std::string& strName, std::int64_t nId,
                     const char* szDirection)
{
    return Add(route, "IO",
               {{"name", strName},
                {"id", Number(nId)},
                {"direction", szDirection},
                {"default-type", "audio"}});
}

pugi::xml_node AddPort(pugi::xml_node io, const std::string& strName)
{
    return Add(io, "Port", {{"type", "audio"}, {"name", strName}});
}

constexpr const char* szTempo = R"(
  <TempoMap superclocks-per-second="282240000">
    <Tempos>
      <Tempo npm="120" enpm="120" note-type="4" type="Tempo::Constant" active="1" locked-to-meter="0" continuing="0" sclock="0" quarters="0:0" bbt="1|1|0" omega="0"/>
    </Tempos>
    <Meters>
      <Meter note-value="4" divisions-per-bar="4" sclock="0" quarters="0:0" bbt="1|1|0"/>
    </Meters>
    <MusicTimes/>
  </TempoMap>)";

std::string MasterText(std::size_t nChannels)
{
    pugi::xml_document document;
    pugi::xml_node route = Add(document, "Route",
                               {{"version", Number(kVersion)},
                                {"id", "1"},
                                {"name", "Master"},
                                {"default-type", "audio"},
                                {"strict-io", "1"},
                                {"volume-applies-to-output", "1"},
                                {"active", "1"},
                                {"denormal-protection", "0"},
                                {"meter-point", "MeterOutput"},
                                {"disk-io-point", "DiskIOPreFader"},
                                {"meter-type", "MeterK14"}});
    Add(route, "PresentationInfo",
        {{"order", "0"}, {"flags", "MasterOut,OrderSet"}, {"color", "0"}});
    pugi::xml_node input = AddIO(route, "Master", 2, "Input");
    pugi::xml_node output = AddIO(route, "Master", 3, "Output");
    for (std::size_t n = 1; n <= nChannels; n++)
    {
        AddPort(input, "Master/audio_in " + std::to_string(n));
        Add(AddPort(output, "Master/audio_out " + std::to_string(n)), "Connection",
            {{"other", "system:playback_" + std::to_string(n)}});
    }
    AddAmp(route, 4);
    AddOutputs(route, "Master", 7);
    return Printed(route, 2);
}

// Where the start tag of the element ends, its '>' excluded; for an empty element its '/' too. The
// offset is that of the element's name.
std::size_t EndOfStartTag(const std::string& strText, std::size_t nOffset)
{
    char quote = 0;
    for (std::size_t n = nOffset; n < strText.size(); n++)
    {
        const char c = strText[n];
        if (quote != 0)
            quote = c == quote ? 0 : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>')
            return n > nOffset && strText[n - 1] == '/' ? n - 1 : n;
    }
    throw CEditorError("the session's file breaks off.");
}

struct Edit
{
    std::size_t nOffset;
    std::size_t nLength; // that it replaces
    std::string strText;
};

std::size_t OffsetOf(const std::string& strText, pugi::xml_node node)
{
    const std::ptrdiff_t nOffset = node.offset_debug();
    if (nOffset < 0 || strText.compare(static_cast<std::size_t>(nOffset),
                                       std::string(node.name()).size(), node.name()) != 0)
        throw CEditorError("the session's file is not written in UTF-8.");
    return static_cast<std::size_t>(nOffset);
}

// In front of the element's children.
Edit InsertInto(const std::string& strText, pugi::xml_node node, const std::string& strNew)
{
    const std::size_t nEnd = EndOfStartTag(strText, OffsetOf(strText, node));
    // What is printed ends with a line's end, which the text behind it has already.
    const std::string strLines = "\n" + strNew.substr(0, strNew.find_last_not_of('\n') + 1);
    if (strText[nEnd] == '>')
        return {nEnd + 1, 0, strLines};
    const std::size_t nBlanks = nEnd - (strText.find_last_not_of(' ', nEnd - 1) + 1);
    return {nEnd - nBlanks, nBlanks + 2, ">" + strLines + "\n</" + node.name() + ">"};
}

} // namespace

bool CArdourSession::CanHold(std::int32_t nRate)
{
    return nRate > 0 && kClockTicksPerSecond % nRate == 0;
}

std::string CArdourSession::NewText(const std::string& strName, std::int32_t nRate,
                                    std::size_t nChannels)
{
    pugi::xml_document document;
    pugi::xml_node session = Add(document, "Session",
                                 {{"version", Number(kVersion)},
                                  {"name", strName},
                                  {"sample-rate", Number(nRate)},
                                  {"id-counter", "100"},
                                  {"name-counter", "1"},
                                  {"event-counter", "0"},
                                  {"vca-counter", "1"}});
    Add(session, "ProgramVersion",
        {{"created-with", "Tarvane Link"}, {"modified-with", "Tarvane Link"}});
    pugi::xml_node config = session.append_child("Config");
    Add(config, "Option", {{"name", "native-file-data-format"}, {"value", "FormatFloat"}});
    Add(config, "Option", {{"name", "native-file-header-format"}, {"value", "WAVE"}});
    for (const char* szName : {"Metadata", "Sources", "Regions", "Locations", "Bundles", "Routes",
                               "Playlists", "UnusedPlaylists", "RouteGroups"})
        session.append_child(szName);
    AddIO(session.append_child("Click"), "Click", 10, "Output");
    const std::string strText =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + Printed(session, 0);

    pugi::xml_document parsed;
    parsed.load_buffer(strText.data(), strText.size());
    const Edit master =
        InsertInto(strText, parsed.child("Session").child("Routes"), MasterText(nChannels));
    std::string strWhole = strText;
    strWhole.replace(master.nOffset, master.nLength, master.strText);
    return strWhole.insert(strWhole.rfind("\n</Session>"), szTempo);
}

CArdourSession::CArdourSession(std::string strText) : m_strText(std::move(strText))
{
    const pugi::xml_parse_result result = m_document.load_buffer(
        m_strText.data(), m_strText.size(), pugi::parse_default, pugi::encoding_utf8);
    m_session = m_document.child("Session");
    if (!result || !m_session)
        throw CEditorError(std::string("the session's file is no session of Ardour: ") +
                           (result ? "it has no element \"Session\"" : result.description()) + ".");
    const int nVersion = m_session.attribute("version").as_int();
    if (nVersion / 1000 != kVersion / 1000)
        throw CEditorError("the session is of version " +
                           std::string(m_session.attribute("version").value()) +
                           "; only those of Ardour 7 can be added to. Open and save it there.");
    for (const char* szName : {"Sources", "Routes", "Playlists"})
    {
        if (!m_session.child(szName))
            throw CEditorError("the session's file has no element \"" + std::string(szName) +
                               "\".");
    }

    m_nNextId = m_session.attribute("id-counter").as_llong(1);
    struct CLargestId : pugi::xml_tree_walker
    {
        bool for_each(pugi::xml_node& node) override
        {
            nLargest = std::max<std::int64_t>(nLargest, node.attribute("id").as_llong());
            return true;
        }
        std::int64_t nLargest = 0;
    } ids;
    m_session.traverse(ids);
    m_nNextId = std::max(m_nNextId, ids.nLargest + 1);

    for (pugi::xml_node source : m_session.child("Sources").children("Source"))
        m_sources.emplace(
            std::pair(source.attribute("name").value(), source.attribute("channel").as_int()),
            source.attribute("id").as_llong());
    for (pugi::xml_node playlist : m_session.child("Playlists").children("Playlist"))
        ReadPlaylist(playlist);
    ReadTracks();
}

void CArdourSession::ReadPlaylist(pugi::xml_node playlist)
{
    Playlist& read = m_playlists[playlist.attribute("id").as_llong()];
    read.there = playlist;
    for (pugi::xml_node region : playlist.children("Region"))
    {
        read.nLayers =
            std::max<std::int64_t>(read.nLayers, region.attribute("layering-index").as_llong() + 1);
        std::vector<std::int64_t> sources;
        for (int n = 0; n < region.attribute("channels").as_int(); n++)
            sources.push_back(region.attribute(("source-" + std::to_string(n)).c_str()).as_llong());
        read.stretches.insert(
            KeyOf(sources, region.attribute("start").value(), region.attribute("length").value()));
    }
}

void CArdourSession::ReadTracks()
{
    m_names = {"Auditioner", "Click", "Master", "Monitor"};
    for (pugi::xml_node route : m_session.child("Routes").children("Route"))
    {
        const pugi::xml_node place = route.child("PresentationInfo");
        const std::string strFlags = place.attribute("flags").value();
        const std::string strName = route.attribute("name").value();
        m_names.insert(strName);
        m_nNextOrder =
            std::max<std::int64_t>(m_nNextOrder, place.attribute("order").as_llong() + 1);
        if (strFlags.find("MasterOut") != std::string::npos)
        {
            m_strMaster = strName;
            m_nMasterChannels = AudioPorts(route, "Input");
        }
        const std::int64_t nPlaylist = route.attribute("audio-playlist").as_llong();
        if (strFlags.find("AudioTrack") == std::string::npos || m_playlists.count(nPlaylist) == 0)
            continue;
        m_tracks.push_back({route.attribute("id").as_llong(), strName, AudioPorts(route, "Input")});
        m_playlistOf[m_tracks.back().nId] = nPlaylist;
    }
}

std::string CArdourSession::Name() const
{
    return m_session.attribute("name").value();
}

std::int32_t CArdourSession::Rate() const
{
    return m_session.attribute("sample-rate").as_int();
}

const CArdourSession::ArdourTrack* CArdourSession::TrackById(std::int64_t nId) const
{
    const auto found = std::find_if(m_tracks.begin(), m_tracks.end(),
                                    [nId](const ArdourTrack& track) { return track.nId == nId; });
    return found == m_tracks.end() ? nullptr : &*found;
}

const CArdourSession::ArdourTrack* CArdourSession::TrackByName(const std::string& strName) const
{
    const auto found =
        std::find_if(m_tracks.begin(), m_tracks.end(),
                     [&strName](const ArdourTrack& track) { return track.strName == strName; });
    return found == m_tracks.end() ? nullptr : &*found;
}

bool CArdourSession::IsTaken(const std::string& strName) const
{
    return m_names.count(strName) != 0;
}

std::int64_t CArdourSession::AddTrack(const std::string& strName, std::size_t nChannels)
{
    const std::int64_t nId = NewId();
    const std::int64_t nPlaylist = NewId();
    m_strNewRoutes += RouteText(nId, strName, nChannels, nPlaylist);
    m_tracks.push_back({nId, strName, nChannels});
    m_names.insert(strName);
    m_playlistOf[nId] = nPlaylist;

    pugi::xml_document document;
    Add(document, "Playlist",
        {{"id", Number(nPlaylist)},
         {"name", strName},
         {"type", "audio"},
         {"orig-track-id", Number(nId)},
         {"pgroup-id", ""},
         {"shared-with-ids", ""},
         {"frozen", "0"},
         {"combine-ops", "0"}});
    std::string strOpening = Printed(document.first_child(), 2);
    const std::size_t nEnd = strOpening.find_last_not_of(" />\n") + 1;
    strOpening.replace(nEnd, std::string::npos, ">\n");
    m_playlists[nPlaylist].strOpening = std::move(strOpening);
    return nId;
}

std::string CArdourSession::RouteText(std::int64_t nId, const std::string& strName,
                                      std::size_t nChannels, std::int64_t nPlaylist)
{
    pugi::xml_document document;
    pugi::xml_node route = Add(document, "Route",
                               {{"version", Number(kVersion)},
                                {"id", Number(nId)},
                                {"name", strName},
                                {"default-type", "audio"},
                                {"strict-io", "0"},
                                {"active", "1"},
                                {"denormal-protection", "0"},
                                {"meter-point", "MeterPostFader"},
                                {"disk-io-point", "DiskIOPreFader"},
                                {"meter-type", "MeterPeak"},
                                {"audio-playlist", Number(nPlaylist)},
                                {"saved-meter-point", "MeterPostFader"},
                                {"alignment-choice", "Automatic"},
                                {"mode", "Normal"}});
    Add(route, "PresentationInfo",
        {{"order", Number(m_nNextOrder++)}, {"flags", "AudioTrack,OrderSet"}, {"color", "0"}});
    pugi::xml_node input = AddIO(route, strName, NewId(), "Input");
    for (std::size_t n = 1; n <= nChannels; n++)
        AddPort(input, strName + "/audio_in " + std::to_string(n));
    pugi::xml_node output = AddIO(route, strName, NewId(), "Output");
    for (std::size_t n = 1; n <= std::max<std::size_t>(nChannels, 2); n++)
    {
        pugi::xml_node port = AddPort(output, strName + "/audio_out " + std::to_string(n));
        if (n <= m_nMasterChannels)
            Add(port, "Connection", {{"other", m_strMaster + "/audio_in " + std::to_string(n)}});
    }
    AddAmp(route, m_nNextId);
    m_nNextId += 3;
    AddOutputs(route, strName, NewId());
    return Printed(route, 2);
}

std::int64_t CArdourSession::AddSource(const std::string& strFile, std::int32_t nChannel)
{
    const auto [source, fNew] = m_sources.emplace(std::pair(strFile, nChannel), m_nNextId);
    if (!fNew)
        return source->second;
    pugi::xml_document document;
    Add(document, "Source",
        {{"name", strFile},
         {"type", "audio"},
         {"flags", ""},
         {"id", Number(NewId())},
         {"channel", Number(nChannel)},
         {"origin", ""},
         {"gain", "1"}});
    m_strNewSources += Printed(document.first_child(), 2);
    return source->second;
}

bool CArdourSession::AddRegion(std::int64_t nTrackId, const Stretch& stretch)
{
    Playlist& playlist = m_playlists.at(m_playlistOf.at(nTrackId));
    const std::string strStart = Ticks(stretch.nStart, Rate());
    const std::string strLength =
        Ticks(stretch.nLength, Rate()) + "@" + Ticks(stretch.nPosition, Rate());
    if (!playlist.stretches.insert(KeyOf(stretch.sources, strStart, strLength)).second)
        return false;
    Attributes attributes{{"name", stretch.strName},
                          {"muted", stretch.fMuted ? "1" : "0"},
                          {"opaque", "1"},
                          {"locked", "0"},
                          {"video-locked", "0"},
                          {"automatic", "0"},
                          {"whole-file", "0"},
                          {"import", "0"},
                          {"external", "0"},
                          {"hidden", "0"},
                          {"position-locked", "0"},
                          {"valid-transients", "0"},
                          {"start", strStart},
                          {"length", strLength},
                          {"sync-position", "a0"},
                          {"ancestral-start", "a0"},
                          {"ancestral-length", "a0@a0"},
                          {"stretch", "1"},
                          {"shift", "1"},
                          {"first-edit", "nothing"},
                          {"layering-index", Number(playlist.nLayers++)},
                          {"id", Number(NewId())},
                          {"type", "audio"},
                          {"scale-amplitude", "1"},
                          {"fade-in-active", "0"},
                          {"fade-out-active", "0"},
                          {"default-fade-in", "0"},
                          {"default-fade-out", "0"},
                          {"envelope-active", "0"},
                          {"channels", std::to_string(stretch.sources.size())}};
    pugi::xml_document document;
    pugi::xml_node region = Add(document, "Region", attributes);
    for (std::size_t n = 0; n < stretch.sources.size(); n++)
    {
        for (const char* szKind : {"source-", "master-source-"})
            region.append_attribute((szKind + std::to_string(n)).c_str()) =
                Number(stretch.sources[n]).c_str();
    }
    playlist.regions.push_back(Printed(region, 3));
    return true;
}

std::string CArdourSession::Text() const
{
    std::vector<Edit> edits;
    std::string strNewPlaylists;
    for (const auto& [nId, playlist] : m_playlists)
    {
        std::string strRegions;
        for (const std::string& strRegion : playlist.regions)
            strRegions += strRegion;
        if (!playlist.there)
            strNewPlaylists += playlist.strOpening + strRegions + "    </Playlist>\n";
        else if (!strRegions.empty())
            edits.push_back(InsertInto(m_strText, playlist.there, strRegions));
    }
    for (const auto& [szName, strNew] :
         {std::pair("Sources", m_strNewSources), std::pair("Routes", m_strNewRoutes),
          std::pair("Playlists", strNewPlaylists)})
    {
        if (!strNew.empty())
            edits.push_back(InsertInto(m_strText, m_session.child(szName), strNew));
    }

    // Attributes have no offsets of their own.
    const std::size_t nStart = OffsetOf(m_strText, m_session);
    const std::size_t nEnd = EndOfStartTag(m_strText, nStart);
    const std::string strCounter = " id-counter=\"";
    const std::size_t nCounter = m_strText.find(strCounter, nStart);
    if (nCounter == std::string::npos || nCounter > nEnd)
        throw CEditorError("the session's file does not count its ids.");
    const std::size_t nValue = nCounter + strCounter.size();
    edits.push_back({nValue, m_strText.find('"', nValue) - nValue, Number(m_nNextId)});

    std::sort(edits.begin(), edits.end(),
              [](const Edit& a, const Edit& b) { return a.nOffset > b.nOffset; });
    std::string strText = m_strText;
    for (const Edit& edit : edits)
        strText.replace(edit.nOffset, edit.nLength, edit.strText);
    return strText;
}

} // namespace Tarvane::Editor
