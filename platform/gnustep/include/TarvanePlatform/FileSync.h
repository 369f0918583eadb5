// Until what was written is on the disk itself.
#pragma once

#include <unistd.h>

/// As fsync, of a file or a folder: 0, or -1 and errno. Blocks for as long as the disk takes.
inline int TarvaneSyncFile(int descriptor)
{
    return ::fsync(descriptor);
}
