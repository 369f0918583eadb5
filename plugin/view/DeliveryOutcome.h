// What became of a take, read from the commands by which a view delivered it: the acknowledge alone
// cannot tell a duplicate from a server that is not there.
#pragma once

#include "signal/Take.h"

#include <optional>
#include <string>

namespace Tarvane
{

// A command to the server, and what came of it.
struct CDeliveryCommand
{
    std::string strScript;             // UTF-8
    int nStatus = 0;                   // of the event: 0 when it was answered
    std::optional<std::string> result; // what the script printed; none when it failed
    std::string strError;              // the server's words, where it had any
};

struct CDeliveryReport
{
    TakeOutcome outcome = TakeOutcome::Unreachable;
    std::string strWords = {};    // the server's, UTF-8
    double dExpectedPosition = 0; // on the server's timeline, samples; 0 where it is not known
};

// One delivery at a time, one thread at a time.
class CDeliveryOutcome
{
public:
    // A view has taken a take in hand.
    void Begin();
    // It has sent this; commands that are none of a delivery change nothing.
    void Add(const CDeliveryCommand& command);
    // It acknowledges the take, as delivered or not.
    CDeliveryReport Conclude(bool fNotDelivered) const;

private:
    bool m_fDuplicate = false;
    bool m_fOffset = false; // was had
    std::optional<CDeliveryCommand> m_sent;
};

} // namespace Tarvane
