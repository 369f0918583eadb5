#include "apps/support/recording/PropertyLines.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/unit/PropertyLog.h"

namespace Tarvane
{
namespace
{

bool TellsProgress(AudioUnitPropertyID nId)
{
    return nId == kTNProperty_CurrentCaptureLength || nId == TNProperty_CurrentSampleInTimeLine;
}

const char* KindText(SeenProperty::Kind kind)
{
    switch (kind)
    {
    case SeenProperty::Kind::Read:
        return "read";
    case SeenProperty::Kind::Write:
        return "write";
    default:
        return "notification";
    }
}

RecordedJson ValueJson(const PropertyValue& value)
{
    if (const auto* pText = std::get_if<std::string>(&value))
        return Utf8Json(*pText);
    if (const auto* pNumber = std::get_if<double>(&value))
        return NumberJson(*pNumber);
    return std::get<std::int64_t>(value);
}

void AddPayload(RecordedJson& line, const SeenProperty& seen)
{
    line["status"] = seen.nStatus;
    if (seen.strBytes.empty())
        return;
    const auto nSize = static_cast<UInt32>(seen.strBytes.size());
    const std::vector<PropertyField> fields = PropertyFields(seen.nId, seen.strBytes.data(), nSize);
    if (fields.empty())
        line["hex"] = HexOf(seen.strBytes);
    for (const PropertyField& field : fields)
        line["fields"][field.strName] = ValueJson(field.value);
}

} // namespace

bool SeenProperty::IsRepeatOf(const SeenProperty& other) const
{
    return kind != Kind::Write && kind == other.kind && nId == other.nId &&
           nScope == other.nScope && nElement == other.nElement &&
           fMainThread == other.fMainThread && nStatus == other.nStatus &&
           (TellsProgress(nId) || strBytes == other.strBytes);
}

RecordedJson PropertyLine(const SeenProperty& seen)
{
    RecordedJson line{
        {"kind", KindText(seen.kind)},    {"property", seen.nId},
        {"name", PropertyName(seen.nId)}, {"scope", seen.nScope},
        {"element", seen.nElement},       {"thread", seen.fMainThread ? "main" : "other"}};
    if (seen.kind != SeenProperty::Kind::Notification)
        AddPayload(line, seen);
    return line;
}

} // namespace Tarvane
