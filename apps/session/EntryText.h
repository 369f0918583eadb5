// Parameters as words for people.
#pragma once

#include "utils/ParameterBlock.h"

#include <string>
#include <string_view>

namespace Tarvane::Session
{

/// "int", "block", ... as the JSON form names them; null for a tag that no class has.
const char* TypeName(int nType);

/// The text as it stands where it is printable UTF-8; everything else, and "\", is escaped with
/// "\". Of the characters in special each gets a "\" too.
std::string PrintableText(std::string_view text, std::string_view special);

/// True for well-formed UTF-8.
bool IsUtf8(std::string_view text);

/// The value in one line, numbers so that no digit is lost; of a block the number of its entries.
std::string ValueText(const CParameter& parameter);

/// The shortest digits that read back as the same number; "nan", "inf" and "-inf", and a NaN other
/// than the usual one with its bits: "nan:7ff8000000000001".
std::string NumberText(double dValue);
std::string NumberText(float fValue);

} // namespace Tarvane::Session
