// What differs between two trees.
#pragma once

#include "utils/ParameterBlock.h"

#include <cstddef>
#include <iosfwd>

namespace Tarvane::Session
{

/// Writes one line a difference and returns their number. Entries belong together by their name and
/// by their place among those of one name:
///
///     - Track/Gain = float 0.5          only in the first tree
///     + Track/Pan = float 0             only in the second
///     ~ Track/Name = string "a" -> string "b"
///     ^ Track                           the same entries in another order
std::size_t Diff(const CParameterBlock& first, const CParameterBlock& second, std::ostream& out);

} // namespace Tarvane::Session
