#pragma once

namespace Tarvane::Conform
{

/// The whole program. Exit codes: 0 every MUST is kept, 1 one is not, 2 it could not be examined.
int RunConform(int argc, char** argv);

} // namespace Tarvane::Conform
