// What the server answered while a capture was delivered, beyond what the view shows of it.
#pragma once

#include "apps/support/CaptureReport.h"
#include "apps/support/recording/CommandWatch.h"

#include <optional>
#include <string>
#include <vector>

namespace Tarvane
{

struct ServerWords
{
    std::string strRefusal; // why it did not add the capture
    // The question for the offset failed, and the capture was added all the same: with 0.
    bool fWithoutOffset = false;
    // Where it should stand on the server's timeline then, in samples; empty when the server has
    // never told its offset.
    std::optional<double> placeMissed;
};

// Of the capture among the commands of this process, which are in their order.
ServerWords WordsAbout(const CCaptureReport& report, const std::vector<SeenCommand>& commands);

} // namespace Tarvane
