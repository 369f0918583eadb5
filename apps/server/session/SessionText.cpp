#include "apps/server/session/SessionText.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace Tarvane::Server
{

namespace
{

using TextJson = nlohmann::json;

constexpr const char* szForm = "Tarvane Link session";
constexpr int kVersion = 1;

const TextJson& Member(const TextJson& object, const char* szKey)
{
    if (!object.is_object())
        throw CSessionFlaw(std::string("there is no object to hold \"") + szKey + "\"");
    const auto found = object.find(szKey);
    if (found == object.end())
        throw CSessionFlaw(std::string("\"") + szKey + "\" is missing");
    return *found;
}

[[noreturn]] void FailType(const char* szKey, const char* szWanted)
{
    throw CSessionFlaw(std::string("\"") + szKey + "\" is no " + szWanted);
}

template <typename Integer> Integer ToInteger(const TextJson& value, const char* szKey)
{
    // Unsigned is how the reader tells a number of zero and above; beyond the signed range it would
    // turn over.
    const bool fFits =
        value.is_number_integer() &&
        !(value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>())) &&
        std::in_range<Integer>(value.get<std::int64_t>());
    if (!fFits)
        FailType(szKey, "whole number in range");
    return value.get<Integer>();
}

template <typename Integer> Integer GetInteger(const TextJson& object, const char* szKey)
{
    return ToInteger<Integer>(Member(object, szKey), szKey);
}

double GetNumber(const TextJson& object, const char* szKey)
{
    const TextJson& value = Member(object, szKey);
    if (!value.is_number())
        FailType(szKey, "number");
    return value.get<double>();
}

std::string GetString(const TextJson& object, const char* szKey)
{
    const TextJson& value = Member(object, szKey);
    if (!value.is_string())
        FailType(szKey, "text");
    return value.get<std::string>();
}

bool GetFlag(const TextJson& object, const char* szKey)
{
    const TextJson& value = Member(object, szKey);
    if (!value.is_boolean())
        FailType(szKey, "truth value");
    return value.get<bool>();
}

const TextJson& GetList(const TextJson& object, const char* szKey)
{
    const TextJson& value = Member(object, szKey);
    if (!value.is_array())
        FailType(szKey, "list");
    return value;
}

Region DecodeRegion(const TextJson& object)
{
    Region region;
    region.nId = GetInteger<std::int64_t>(object, "id");
    region.nTrackId = GetInteger<std::int64_t>(object, "track");
    region.strPath = GetString(object, "file");
    region.nStart = GetInteger<std::int64_t>(object, "start");
    region.nEnd = GetInteger<std::int64_t>(object, "end");
    region.nPosition = GetInteger<std::int64_t>(object, "position");
    region.nSampleRate = GetInteger<std::int32_t>(object, "sampleRate");
    for (const TextJson& channel : GetList(object, "channels"))
        region.channels.push_back(ToInteger<std::int32_t>(channel, "channels"));
    region.fMuted = GetFlag(object, "muted");
    return region;
}

MarkerArea DecodeMarkerArea(const TextJson& object)
{
    return {GetInteger<std::int64_t>(object, "id"), GetInteger<std::int64_t>(object, "track"),
            GetInteger<std::int64_t>(object, "start"), GetInteger<std::int64_t>(object, "end")};
}

Process DecodeProcess(const TextJson& object)
{
    Process process;
    process.nId = GetInteger<std::int64_t>(object, "id");
    process.strKind = GetString(object, "kind");
    process.strHost = GetString(object, "host");
    for (const TextJson& input : GetList(object, "inputs"))
        process.inputs.push_back(
            {GetInteger<std::int64_t>(input, "ioType"), GetInteger<std::int64_t>(input, "track"),
             GetInteger<std::int64_t>(input, "start"), GetInteger<std::int64_t>(input, "end")});
    for (const TextJson& output : GetList(object, "outputs"))
        process.outputTrackIds.push_back(ToInteger<std::int64_t>(output, "outputs"));
    process.nRegionId = GetInteger<std::int64_t>(object, "region");
    return process;
}

Document DecodeDocument(const TextJson& object)
{
    Document document;
    document.dDisplayPosition = GetNumber(object, "displayPosition");
    document.nSelectedRegionId = GetInteger<std::int64_t>(object, "selectedRegion");
    for (const TextJson& track : GetList(object, "tracks"))
        document.tracks.push_back(
            {GetInteger<std::int64_t>(track, "id"), GetString(track, "name")});
    for (const TextJson& region : GetList(object, "regions"))
        document.regions.push_back(DecodeRegion(region));
    for (const TextJson& area : GetList(object, "markerAreas"))
        document.markerAreas.push_back(DecodeMarkerArea(area));
    for (const TextJson& process : GetList(object, "processes"))
        document.processes.push_back(DecodeProcess(process));
    return document;
}

TextJson Parse(std::string_view text)
{
    try
    {
        return TextJson::parse(text);
    }
    catch (const TextJson::exception& error)
    {
        throw CSessionFlaw(std::string("this is no whole session text: ") + error.what());
    }
}

} // namespace

bool IsSessionText(std::string_view bytes)
{
    const std::size_t nFirst = bytes.find_first_not_of(" \t\r\n");
    return nFirst != std::string_view::npos && bytes[nFirst] == '{';
}

CSession DecodeSessionText(std::string_view text)
{
    const TextJson whole = Parse(text);
    if (!whole.is_object() || whole.value("form", TextJson()) != szForm)
        throw CSessionFlaw("this is no session of this program");
    RequireVersion(GetInteger<std::int64_t>(whole, "version"), kVersion);

    std::array<Document, kDocumentKinds.size()> documents;
    for (DocumentKind kind : kDocumentKinds)
        documents[static_cast<std::size_t>(kind)] =
            DecodeDocument(Member(Member(whole, "documents"), DocumentName(kind)));
    CSession session = CSession::Restore(std::move(documents), GetNumber(whole, "linkOffset"),
                                         GetInteger<std::int64_t>(whole, "updateCount"),
                                         GetInteger<std::int64_t>(whole, "nextId"));
    if (const auto flaw = session.Flaw())
        throw CSessionFlaw(*flaw);
    return session;
}

} // namespace Tarvane::Server
