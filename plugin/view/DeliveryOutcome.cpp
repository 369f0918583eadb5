#include "plugin/view/DeliveryOutcome.h"

#include <cstdlib>
#include <string_view>

namespace Tarvane
{
namespace
{

// Lines of the scripts of a delivery, each in one of them alone.
constexpr std::string_view kAsksForDuplicate = "\nnDuplicate = CheckForDuplicateRegion(";
constexpr std::string_view kAsksForOffset = "\nprint(GetLinkSMPTEOffset())\n";
constexpr std::string_view kSendsFile = "\nAddAudioRegion(idTrack, \"";
// Between the path and the position.
constexpr std::string_view kBeforePosition = "\", true, false, ";

bool Has(const std::string& strScript, std::string_view line)
{
    return strScript.find(line) != std::string::npos;
}

double PositionIn(const std::string& strScript)
{
    const std::size_t nAt = strScript.rfind(kBeforePosition);
    return nAt == std::string::npos
               ? 0
               : static_cast<double>(
                     std::strtoll(strScript.c_str() + nAt + kBeforePosition.size(), nullptr, 10));
}

} // namespace

void CDeliveryOutcome::Begin()
{
    *this = {};
}

void CDeliveryOutcome::Add(const CDeliveryCommand& command)
{
    const bool fAnswered = command.nStatus == 0 && command.result && !command.result->empty();
    if (Has(command.strScript, kAsksForDuplicate))
        m_fDuplicate = fAnswered && std::strtol(command.result->c_str(), nullptr, 10) == 1;
    else if (Has(command.strScript, kAsksForOffset))
        m_fOffset = fAnswered;
    else if (Has(command.strScript, kSendsFile))
        m_sent = command;
}

CDeliveryReport CDeliveryOutcome::Conclude(bool fNotDelivered) const
{
    if (m_fDuplicate)
        return {.outcome = TakeOutcome::Duplicate};
    // A view without a track sends nothing.
    if (!m_sent)
        return {};
    CDeliveryReport report{.strWords = m_sent->strError,
                           .dExpectedPosition = m_fOffset ? PositionIn(m_sent->strScript) : 0};
    if (m_sent->nStatus != 0)
        report.outcome = TakeOutcome::Unreachable;
    else if (fNotDelivered)
        report.outcome = TakeOutcome::Refused;
    else
        report.outcome = m_fOffset ? TakeOutcome::Delivered : TakeOutcome::PlacedWithoutOffset;
    return report;
}

} // namespace Tarvane
