#pragma once

#include <cstdlib>

/// Ends the run: the input breaks a rule that has to hold for every input.
inline void Require(bool fHolds)
{
    if (!fHolds)
        std::abort();
}
