// What became of a take, read from the commands by which a view delivered it: the acknowledge alone
// cannot tell a duplicate from a server that is not there.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/recording/CommandWatch.h"
#include "signal/Take.h"

#include <optional>
#include <string>

namespace Tarvane
{

struct CDeliveryReport
{
    TakeOutcome outcome = TakeOutcome::Unreachable;
    std::string strWords = {}; ///< the server's, UTF-8
    /// On the server's timeline, samples; 0 where it is not known. Of a take that was placed
    /// without the offset: by the offset that was told last.
    double dExpectedPosition = 0;
};

/// One delivery at a time, one thread at a time.
class CDeliveryOutcome
{
public:
    /// A view has taken the take of this record in hand.
    void Begin(const TNCaptureElement& record);
    /// It has sent this; commands that are none of a delivery change nothing.
    void Add(const SeenCommand& command);
    /// It acknowledges the take, as delivered or not. One that it sent without being seen is
    /// believed to be what the acknowledge says.
    CDeliveryReport Conclude(bool fNotDelivered) const;

private:
    double PlaceMeant() const;

    double m_dPosition = 0; ///< of the take on the host's timeline, samples
    double m_dRate = 0;     ///< samples per second
    bool m_fDuplicate = false;
    bool m_fOffset = false;             ///< was had for this take
    std::optional<double> m_lastOffset; ///< seconds; stays from take to take
    std::optional<SeenCommand> m_sent;
};

} // namespace Tarvane
