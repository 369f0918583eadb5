// Sessions as JSON and back, without loss:
//
//     {"format": "tarvane-session", "name": "", "parameters": [
//       {"name": "Gain", "type": "float", "value": 0.5},
//       {"name": "Region", "type": "block", "parameters": []}]}
//
// Types and their values: "string"; "int", a number; "double" and "float", a number or one of the
// texts "nan", "inf", "-inf", "nan:<bits in hex>"; "bool"; "int64" and "uint64", digits in a text,
// since few readers of JSON keep 64 bits; "fileid", {"key": digits, "sub": digits}; "block", which
// has "parameters" in place of "value". A name or string that is not UTF-8 is {"hex": digits}. An
// entry of unknown type is null.
#pragma once

#include "utils/ParameterBlock.h"

#include <iosfwd>
#include <string_view>

namespace Tarvane::Session
{

/// Any depth.
void WriteJson(const CParameterBlock& root, std::ostream& out);

/// Fills an empty block. Throws CUsageError for what is not in the form above, or is but cannot be
/// in a session: null entries and names with a zero byte. Any depth.
void ReadJson(std::string_view text, CParameterBlock& root);

} // namespace Tarvane::Session
