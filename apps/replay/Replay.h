// The program.
#pragma once

namespace Tarvane::Replay
{

/// Everything from the arguments to the exit code.
int RunReplay(int argc, char** argv);

} // namespace Tarvane::Replay
