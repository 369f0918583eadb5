// Until what was written is on the disk itself.
#pragma once

#include <fcntl.h>
#include <unistd.h>

/// As fsync, of a file or a folder: 0, or -1 and errno. Blocks for as long as the disk takes. Here
/// fsync ends when the drive has the bytes, which may be in a cache that a loss of power empties;
/// what is not kept on a drive of that kind knows fsync only.
inline int TarvaneSyncFile(int descriptor)
{
    return ::fcntl(descriptor, F_FULLFSYNC) == 0 ? 0 : ::fsync(descriptor);
}
