// Gradients as source text.
#pragma once

#include <string>

namespace Tarvane
{

/// Prints the calls that rebuild the gradient on the standard error stream. strCode is as ParseCode
/// takes it. Throws CUsageError for a code without an entry and for a flat colour.
void DumpGradient(const std::string& strCode);

} // namespace Tarvane
