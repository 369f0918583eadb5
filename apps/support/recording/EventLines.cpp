#include "apps/support/recording/EventLines.h"

namespace Tarvane
{
namespace
{

RecordedJson ParameterJson(const SeenParameter& parameter)
{
    RecordedJson json{{"type", CodeText(parameter.nType)}};
    if (parameter.nType == typeUnicodeText)
        json.update(Utf16Json(parameter.bytes));
    else
        json["hex"] = HexOf(parameter.bytes);
    return json;
}

RecordedJson ParametersJson(const std::vector<SeenParameter>& parameters)
{
    RecordedJson json = RecordedJson::object();
    for (const SeenParameter& parameter : parameters)
        json[CodeText(parameter.nKeyword)] = ParameterJson(parameter);
    return json;
}

} // namespace

RecordedJson EventLine(const SeenEvent& event)
{
    return {{"kind", "event"},
            {"number", event.nNumber},
            {"target", CodeText(event.nTarget)},
            {"class", CodeText(event.nClass)},
            {"id", CodeText(event.nId)},
            {"parameters", ParametersJson(event.parameters)}};
}

RecordedJson ReplyLine(const SeenReply& reply)
{
    return {{"kind", "reply"},
            {"number", reply.nNumber},
            {"status", reply.nStatus},
            {"took", reply.nMicroseconds},
            {"parameters", ParametersJson(reply.parameters)}};
}

} // namespace Tarvane
