#include "apps/link/doctor/Doctor.h"

#include "apps/link/doctor/CaptureFolderCheck.h"
#include "apps/link/doctor/EventBus.h"
#include "apps/link/doctor/Examiner.h"
#include "apps/link/doctor/ServerChecks.h"
#include "apps/link/doctor/TakesCheck.h"
#include "apps/link/shared/Answer.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

namespace Tarvane::Link
{

namespace
{

Finding CheckBus(const Options& options)
{
    const BusState bus = LookAtEventBus(options.TimeoutTicks());
    switch (bus.kind)
    {
    case BusState::Works:
        return {"bus", Verdict::Good, bus.szText, bus.szAdvice, Outcome::Done};
    case BusState::Mute:
        return {"bus", Verdict::Problem, bus.szText, bus.szAdvice, Outcome::TimedOut};
    default:
        return {"bus", Verdict::Problem, bus.szText, bus.szAdvice, Outcome::NotRunning};
    }
}

// A server that has not answered would hold every further question for its timeout too.
bool MayGoOn(const Finding& finding)
{
    return finding.outcome == Outcome::Done || finding.outcome == Outcome::ServerError;
}

} // namespace

Findings Examine(const Options& options)
{
    Findings findings{CheckBus(options)};
    const CExaminer examiner(options);
    for (const auto& check : {CheckServer, CheckVersion, CheckSilence, CheckErrors, CheckSpeed,
                              CheckFunctions, CheckDocument, CheckCaptureFolder, CheckRates})
    {
        if (!MayGoOn(findings.back()))
            break;
        findings.push_back(check(examiner));
    }
    findings.push_back(CheckTakes());
    findings.push_back(CheckLosses());
    return findings;
}

int Doctor(const Options& options)
{
    const Findings findings = Examine(options);
    const Outcome outcome = OutcomeOf(findings);
    if (options.fJson)
        Print(JsonLine({{"command", options.strCommand},
                        {"outcome", NameOf(outcome)},
                        {"exitCode", ExitCodeOf(outcome)},
                        {"findings", FindingsJson(findings)}}));
    else
        Print(FindingsText(findings));
    return ExitCodeOf(outcome);
}

} // namespace Tarvane::Link
