#include "apps/replay/RecordingReader.h"

#include "apps/support/program/CommandLine.h"
#include "utils/UnicodeText.h"

#include <cstring>
#include <fstream>
#include <limits>
#include <optional>
#include <stdexcept>

namespace Tarvane::Replay
{
namespace
{

constexpr long long kVersion = 1;
constexpr char kFormat[] = "tarvane-recording";

// What is wrong with a line.
[[noreturn]] void Flaw(const std::string& strWhat)
{
    throw std::invalid_argument(strWhat);
}

const RecordedJson& Member(const RecordedJson& json, const char* szName)
{
    const auto found = json.find(szName);
    if (found == json.end())
        Flaw(std::string("it has no \"") + szName + "\"");
    return *found;
}

long long Whole(const RecordedJson& json, const char* szName, long long nLowest = 0,
                long long nHighest = std::numeric_limits<long long>::max())
{
    const RecordedJson& member = Member(json, szName);
    // What is greater than any number of the other kind would come out negative.
    const bool fNumber =
        member.is_number_integer() &&
        (!member.is_number_unsigned() ||
         member.get<unsigned long long>() <= static_cast<unsigned long long>(nHighest));
    const bool fFits =
        fNumber && member.get<long long>() >= nLowest && member.get<long long>() <= nHighest;
    if (!fFits)
        Flaw(std::string("its \"") + szName + "\" is no such number");
    return member.get<long long>();
}

const std::string& Word(const RecordedJson& json, const char* szName)
{
    const RecordedJson& member = Member(json, szName);
    if (!member.is_string())
        Flaw(std::string("its \"") + szName + "\" is no text");
    return member.get_ref<const std::string&>();
}

const RecordedJson& Object(const RecordedJson& json, const char* szName)
{
    const RecordedJson& member = Member(json, szName);
    if (!member.is_object())
        Flaw(std::string("its \"") + szName + "\" is no object");
    return member;
}

std::string BytesOfText(const std::string& strText)
{
    const std::u16string units = Utf16FromUtf8(strText);
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

Parameters ParametersIn(const RecordedJson& line)
{
    Parameters parameters;
    for (const auto& [strKeyword, json] : Object(line, "parameters").items())
    {
        if (!json.is_object())
            Flaw("a parameter is no object");
        const std::string strBytes =
            json.contains("hex") ? BytesOfHex(Word(json, "hex")) : BytesOfText(Word(json, "text"));
        parameters[CodeOfText(strKeyword)] = {CodeOfText(Word(json, "type")), strBytes};
    }
    return parameters;
}

Exchange EventIn(const RecordedJson& line)
{
    Exchange exchange;
    exchange.nNumber = Whole(line, "number", 1);
    exchange.nTime = Whole(line, "time");
    exchange.nTarget = CodeOfText(Word(line, "target"));
    exchange.nClass = CodeOfText(Word(line, "class"));
    exchange.nId = CodeOfText(Word(line, "id"));
    exchange.event = ParametersIn(line);
    return exchange;
}

void CheckField(const RecordedJson& field)
{
    if (field.is_object())
    {
        Word(field, "text");
        Word(field, "hex");
    }
    else if (!field.is_string() && !field.is_number())
    {
        Flaw("a field is neither a number nor a text");
    }
}

void CheckProperty(const RecordedJson& line, bool fHasStatus)
{
    constexpr long long kHighest = std::numeric_limits<std::uint32_t>::max();
    Whole(line, "property", 0, kHighest);
    Word(line, "name");
    Whole(line, "element", 0, kHighest);
    Word(line, "thread");
    if (line.contains("count"))
    {
        Whole(line, "count");
        Whole(line, "last");
    }
    if (fHasStatus)
        Whole(line, "status", std::numeric_limits<std::int32_t>::min(),
              std::numeric_limits<std::int32_t>::max());
    if (line.contains("hex"))
        BytesOfHex(Word(line, "hex"));
    if (line.contains("fields"))
    {
        for (const auto& [strName, field] : Object(line, "fields").items())
            CheckField(field);
    }
}

class CReader
{
public:
    // Throws std::invalid_argument for a line that is not good; nothing of it is taken then.
    void Take(RecordedJson json)
    {
        if (!json.is_object())
            Flaw("it is no JSON object");
        Line line{Whole(json, "time"), Word(json, "kind"), {}};
        if (!TakeKind(line.strKind, json))
            return;
        line.json = std::move(json);
        m_recording.lines.push_back(std::move(line));
    }

    void NoteFlaw(std::size_t nLine, const std::string& strWhat)
    {
        if (m_recording.nFlaws++ == 0)
            m_recording.strFirstFlaw = "line " + std::to_string(nLine) + ": " + strWhat;
    }

    Recording m_recording;

private:
    // False for a kind that is not known.
    bool TakeKind(const std::string& strKind, const RecordedJson& json)
    {
        if (strKind == "event")
            TakeEvent(EventIn(json));
        else if (strKind == "reply")
            TakeReply(json);
        else if (strKind == "read" || strKind == "write" || strKind == "notification")
            CheckProperty(json, strKind != "notification");
        else if (strKind == "lost")
            Whole(json, "count");
        else if (strKind == "waiting")
            RequireEvent(json);
        else
            return false;
        return true;
    }

    void TakeEvent(Exchange exchange)
    {
        if (!m_places.emplace(exchange.nNumber, m_recording.exchanges.size()).second)
            Flaw("there is an event of this number already");
        m_recording.exchanges.push_back(std::move(exchange));
    }

    Exchange& RequireEvent(const RecordedJson& json)
    {
        const auto found = m_places.find(Whole(json, "number", 1));
        if (found == m_places.end())
            Flaw("its event is not in the recording");
        return m_recording.exchanges[found->second];
    }

    void TakeReply(const RecordedJson& json)
    {
        Exchange& exchange = RequireEvent(json);
        if (exchange.fEnded)
            Flaw("there is a reply to this event already");
        const long long nStatus = Whole(json, "status", std::numeric_limits<OSErr>::min(),
                                        std::numeric_limits<OSErr>::max());
        const long long nTook = Whole(json, "took");
        exchange.reply = ParametersIn(json);
        exchange.nStatus = static_cast<OSErr>(nStatus);
        exchange.nTook = nTook;
        exchange.fEnded = true;
    }

    std::map<long long, std::size_t> m_places; // of events, by their numbers
};

// Discarded when the line is no JSON, or is deeper than any that a recorder writes: to take one of
// a million brackets apart takes long.
RecordedJson JsonIn(const std::string& strLine)
{
    constexpr int kDeepest = 16;
    struct TooDeep
    {
    };
    const auto keepsInDepth = [](int nDepth, RecordedJson::parse_event_t, RecordedJson&)
    {
        if (nDepth > kDeepest)
            throw TooDeep();
        return true;
    };
    try
    {
        return RecordedJson::parse(strLine, keepsInDepth, false);
    }
    catch (const TooDeep&)
    {
        return RecordedJson(RecordedJson::value_t::discarded);
    }
}

RecordedJson Parse(const std::string& strLine)
{
    RecordedJson json = JsonIn(strLine);
    if (json.is_discarded())
        Flaw("it is no whole line of JSON");
    return json;
}

void ReadHeader(const std::string& strLine, const std::string& strName, Recording& recording)
{
    const RecordedJson json = JsonIn(strLine);
    if (!json.is_object() || !json.contains("format") || json["format"] != kFormat)
        throw CUsageError(strName + " is no recording of the link - name a file that --record of "
                                    "tarvane-host or tarvane-link has made.");
    try
    {
        if (Whole(json, "version", 1) > kVersion)
            throw CUsageError(strName + " was recorded in a later format - use the tarvane-replay "
                                        "of the program that recorded it.");
        recording.strProgram = Word(json, "program");
        recording.strStarted = Word(json, "started");
    }
    catch (const std::invalid_argument& flaw)
    {
        throw CUsageError("the first line of " + strName + " is damaged: " + flaw.what() + ".");
    }
}

} // namespace

Recording ReadRecording(std::istream& stream, const std::string& strName)
{
    CReader reader;
    std::string strLine;
    std::getline(stream, strLine);
    ReadHeader(strLine, strName, reader.m_recording);
    for (std::size_t nLine = 2; std::getline(stream, strLine); ++nLine)
    {
        try
        {
            reader.Take(Parse(strLine));
        }
        catch (const std::invalid_argument& flaw)
        {
            reader.NoteFlaw(nLine, flaw.what());
        }
    }
    return std::move(reader.m_recording);
}

Recording ReadRecordingFile(const std::string& strFile)
{
    std::ifstream stream(strFile, std::ios::binary);
    // A folder opens, and has no first byte.
    if (!stream || (stream.peek() == std::ifstream::traits_type::eof() && !stream.eof()))
        throw CUsageError("cannot read " + strFile + " - name a file that --record has made.");
    stream.clear();
    return ReadRecording(stream, strFile);
}

} // namespace Tarvane::Replay
