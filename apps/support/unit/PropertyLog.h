// What properties hold, by field; and their writes in words, for logs.
#pragma once

#include <AudioUnit/AudioUnit.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace Tarvane
{

/// The name of a property of the link protocol, "TNProperty_ElementDone" for instance; "unknown"
/// for every other id.
const char* PropertyName(AudioUnitPropertyID nId);

/// A whole number, a number, or the bytes of a path up to its end.
using PropertyValue = std::variant<std::int64_t, double, std::string>;

struct PropertyField
{
    std::string strName;
    PropertyValue value;
};

/// The payload under the names of its fields, in their order, those of times behind the name of
/// their block: "tDub.dStart". Reserved room is left out. Empty for an id without a value, and for
/// a payload that is not of the id's size.
std::vector<PropertyField> PropertyFields(AudioUnitPropertyID nId, const void* pData, UInt32 nSize);

/// "64008 TNProperty_ElementDone: nElement 3, fHandled 1, fNotDelivered 0, fFinal 1". A payload
/// that is not of the id's size, or of an id that is not written, is shown as bytes in hexadecimal.
std::string DescribeWrite(AudioUnitPropertyID nId, const void* pData, UInt32 nSize);

} // namespace Tarvane
