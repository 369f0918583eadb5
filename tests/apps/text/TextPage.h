// The page that tells users what the table says.
#pragma once

#include <string>

namespace TarvaneTest
{

/// docs/text.md as the table has it.
std::string TextPage();

} // namespace TarvaneTest
