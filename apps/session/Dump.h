// The tree of a session as text.
#pragma once

#include "utils/ParameterBlock.h"

#include <cstddef>
#include <iosfwd>

namespace Tarvane::Session
{

/// Lines below this level are indented no further, and begin with the number of their level: "[33]
/// ".
inline constexpr std::size_t kDeepestIndent = 32;

/// One line an entry, indented by its level: type, name, value. Blocks deeper than nDepth levels
/// below the top are not opened.
void Dump(const CParameter& top, std::size_t nDepth, std::ostream& out);

} // namespace Tarvane::Session
