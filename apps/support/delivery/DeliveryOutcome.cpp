#include "apps/support/delivery/DeliveryOutcome.h"

#include <cstdlib>
#include <locale>
#include <sstream>
#include <string_view>

namespace Tarvane
{
namespace
{

// Lines of the scripts of a delivery, each in one of them alone.
constexpr std::string_view kAsksForDuplicate = "\nnDuplicate = CheckForDuplicateRegion(";
constexpr std::string_view kAsksForOffset = "\nprint(GetLinkSMPTEOffset())\n";
constexpr std::string_view kSendsFile = "\nAddAudioRegion(idTrack, \"";

bool Has(const SeenCommand& command, std::string_view line)
{
    return command.strScript.find(line) != std::string::npos;
}

bool IsAnswered(const SeenCommand& command)
{
    return command.nStatus == 0 && command.fHasResult && !command.strResult.empty();
}

// Seconds; empty when the server did not tell them.
std::optional<double> OffsetIn(const SeenCommand& command)
{
    double dSeconds = 0;
    std::istringstream text(command.strResult);
    text.imbue(std::locale::classic());
    const bool fTold = IsAnswered(command) && command.strError.empty() && text >> dSeconds;
    return fTold ? std::optional(dSeconds) : std::nullopt;
}

} // namespace

void CDeliveryOutcome::Begin(const TNCaptureElement& record)
{
    m_dPosition = record.tDub.dPosition;
    m_dRate = record.dSampleRate;
    m_fDuplicate = false;
    m_fOffset = false;
    m_sent.reset();
}

void CDeliveryOutcome::Add(const SeenCommand& command)
{
    if (Has(command, kAsksForDuplicate))
        m_fDuplicate =
            IsAnswered(command) && std::strtol(command.strResult.c_str(), nullptr, 10) == 1;
    else if (Has(command, kAsksForOffset))
    {
        const std::optional<double> offset = OffsetIn(command);
        m_fOffset = offset.has_value();
        if (m_fOffset)
            m_lastOffset = offset;
    }
    else if (Has(command, kSendsFile))
        m_sent = command;
}

double CDeliveryOutcome::PlaceMeant() const
{
    return m_lastOffset ? *m_lastOffset * m_dRate + m_dPosition : 0;
}

CDeliveryReport CDeliveryOutcome::Conclude(bool fNotDelivered) const
{
    if (m_fDuplicate)
        return {.outcome = TakeOutcome::Duplicate};
    // A view without a track sends nothing.
    if (!m_sent)
        return {.outcome = fNotDelivered ? TakeOutcome::Unreachable : TakeOutcome::Delivered};
    CDeliveryReport report{.strWords = m_sent->strError, .dExpectedPosition = PlaceMeant()};
    if (m_sent->nStatus != 0)
        report.outcome = TakeOutcome::Unreachable;
    else if (fNotDelivered)
        report.outcome = TakeOutcome::Refused;
    else
        report.outcome = m_fOffset ? TakeOutcome::Delivered : TakeOutcome::PlacedWithoutOffset;
    return report;
}

} // namespace Tarvane
