// Where a parameter stands in a tree, as text: names from the root down, joined by "/". [n] behind
// a name chooses among entries of one name, from 0; the first one goes without, unless it has no
// name. The root is "/". A "/", "[" or "\" that belongs to a name has a "\" in front of it.
#pragma once

#include "utils/ParameterBlock.h"

#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Session
{

struct PathStep
{
    std::string strName;
    std::size_t nIndex;
};

/// Bytes that would not print are shown as \xNN.
std::string FormatPath(const std::vector<PathStep>& steps);

/// Throws CUsageError for what is no path.
std::vector<PathStep> ParsePath(std::string_view text);

/// Null if nothing stands there. The root itself for an empty path.
const CParameter* FindEntry(const CParameterBlock& root, const std::vector<PathStep>& steps);

} // namespace Tarvane::Session
