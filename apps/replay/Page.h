// A recording as a page to look at.
#pragma once

#include "apps/replay/Recording.h"

#include <string>
#include <string_view>

namespace Tarvane::Replay
{

/// What every page of ours begins with.
inline constexpr std::string_view kPageStart =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"generator\" content=\"tarvane-replay\">\n";

/// HTML, UTF-8, complete in itself and without a script: a lane each for plug-in, view and server,
/// time downwards, an arrow for each line of the recording, which opens to tell all of it.
std::string DrawPage(const Recording& recording);

} // namespace Tarvane::Replay
