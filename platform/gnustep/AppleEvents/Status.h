// Which published number stands for which failure of the bus. Never 0.
#pragma once

#include <MacTypes.h>

#include <string_view>

namespace AppleEvents
{

/// For an error reply. The name decides: the number that sd-bus derives from it is the same for a
/// timeout and for a peer that is gone.
OSErr StatusForErrorName(std::string_view name);

/// For what a call of sd-bus itself answers: a negative errno.
OSErr StatusForErrno(int result);

/// Whether a negative errno of sd-bus says that the connection is gone, or was made before a fork.
bool MeansLost(int result);

} // namespace AppleEvents
