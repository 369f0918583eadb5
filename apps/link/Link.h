// The program.
#pragma once

namespace Tarvane::Link
{

/// Everything from the arguments to the exit code. May be called again in one process.
int RunLink(int argc, char** argv);

} // namespace Tarvane::Link
