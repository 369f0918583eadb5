#pragma once

namespace Tarvane::Session
{

/// The whole program. Exit codes: 0 fine, 1 differs or flawed, 2 wrong use or unreadable.
int RunSession(int argc, char** argv);

} // namespace Tarvane::Session
