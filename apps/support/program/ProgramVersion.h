// Which Tarvane Link this program is of.
#pragma once

namespace Tarvane
{

/// "1.2.3".
const char* ProgramVersion();

/// The commit that it was built from, in twelve digits, with a + behind them when the sources were
/// changed since; empty when that is not known, as in a build from an archive of the sources.
const char* ProgramCommit();

} // namespace Tarvane
