// What an examination found.
#pragma once

#include "apps/link/shared/Outcome.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Tarvane::Link
{

enum class Verdict
{
    Good,
    Unknown, ///< could not be examined
    Warning, ///< captures work, something else does not
    Problem, ///< captures do not work
};

struct Finding
{
    std::string strCheck; ///< one word: what was examined
    Verdict verdict = Verdict::Good;
    std::string strText{};
    std::string strAdvice{}; ///< what to do; empty when there is nothing
    /// Of a problem: what the exit code is to say.
    Outcome outcome = Outcome::Done;
    std::vector<std::string> told{}; ///< the exchange that showed it, a line each
};

using Findings = std::vector<Finding>;

/// "ok", "unknown", "warning", "problem".
const char* NameOf(Verdict verdict);

/// A line each, with what to do and what was exchanged below it; at the end, where something was
/// exchanged that is told, how to see more.
std::string FindingsText(const Findings& findings);
nlohmann::ordered_json FindingsJson(const Findings& findings);

/// Of the first problem; Done when there is none.
Outcome OutcomeOf(const Findings& findings);

} // namespace Tarvane::Link
