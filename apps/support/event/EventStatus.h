// What the number that an event ended with tells whoever looks for its cause.
#pragma once

#include <string>

namespace Tarvane
{

/// The likeliest cause in a sentence, which begins with a capital and ends with a point. Empty for
/// 0 and for numbers of which nothing can be said.
std::string LikelyCause(int nStatus);

} // namespace Tarvane
