// Whether a demonstration went as it should: what was sent against what the server's session holds,
// and what came back for it.
#pragma once

#include "apps/server/session/Session.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Tarvane
{

/// One capture, as it was meant and as the host answered.
struct DemoCapture
{
    std::string strSource;
    std::string strTrack;      ///< name
    double dPosition = 0;      ///< samples on the host's timeline
    bool fDuplicate = false;   ///< the server has it already
    nlohmann::json hostAnswer; ///< what the host said of it
};

/// The region that the server should have made of a capture.
Server::Region ExpectedRegion(const DemoCapture& capture, double dLinkOffset);

/// Everything that is wrong, a line each; empty when all is well: each capture that is no duplicate
/// is exactly one region of its track, at its place plus the offset, there is no other region, and
/// every acknowledge says what it should.
std::vector<std::string> FindFaults(const std::vector<DemoCapture>& captures,
                                    const Server::CSession& session, double dLinkOffset);

} // namespace Tarvane
