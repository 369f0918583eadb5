// The commands that are one operation of the script link each.
#pragma once

#include "apps/link/shared/Answer.h"
#include "apps/link/shared/Options.h"

#include <string>
#include <vector>

class CTarvaneScript;

namespace Tarvane::Link
{

/// Throw CUsageError for what cannot be sent.
using Command = Answer (*)(CTarvaneScript& link, const Options& options);

Answer Tracks(CTarvaneScript& link, const Options& options);
Answer Offset(CTarvaneScript& link, const Options& options);
Answer Updates(CTarvaneScript& link, const Options& options);
Answer Send(CTarvaneScript& link, const Options& options);
Answer Duplicate(CTarvaneScript& link, const Options& options);
Answer Export(CTarvaneScript& link, const Options& options);
Answer Render(CTarvaneScript& link, const Options& options);
Answer Align(CTarvaneScript& link, const Options& options);
Answer Spread(CTarvaneScript& link, const Options& options);
Answer Clear(CTarvaneScript& link, const Options& options);
Answer Run(CTarvaneScript& link, const Options& options);
/// Lists the takes of this machine, sends one by hand, or forgets one; the files stay.
Answer Takes(CTarvaneScript& link, const Options& options);

/// Null when there is no such command.
Command FindCommand(const std::string& strName);

/// A line for each track: its place, a tab, its name.
std::string TrackLines(const std::vector<std::string>& tracks);

} // namespace Tarvane::Link
