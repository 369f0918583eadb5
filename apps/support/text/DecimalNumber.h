// Numbers as programs write them for one another.
#pragma once

#include <optional>
#include <string>

namespace Tarvane
{

/// The whole text as a decimal number with a point, in every locale: "-12", "0.5", "1e-3". Nothing
/// for any other text, signs of plus, spaces and words such as "inf" included, and one that is too
/// large or too small to be held.
/// Float: float or double.
template <typename Float> std::optional<Float> DecimalFrom(const std::string& strText);

} // namespace Tarvane
