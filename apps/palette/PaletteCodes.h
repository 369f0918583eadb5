// Colour codes as a designer writes and reads them.
#pragma once

#include "colours/ComponentColour.h"

#include <string>

namespace Tarvane
{

/// The name of the constant, "ccButtonFace"; empty for a code without one.
std::string NameOfCode(CComponentCode code);

/// Module and component: "0:312".
std::string NumbersOfCode(CComponentCode code);

/// A constant's name, a component of module 0, or MODULE:COMPONENT. Throws CUsageError.
CComponentCode ParseCode(const std::string& strText);

} // namespace Tarvane
