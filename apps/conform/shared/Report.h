#pragma once

#include "apps/conform/shared/Rule.h"

#include <nlohmann/json.hpp>

namespace Tarvane::Conform
{

/// "kept", "broken" or "not examined".
const char* NameOf(Outcome outcome);

// szParty: "server" or "plug-in".

/// What is kept, a line a rule; what was not examined, a line a reason; last what is broken, with
/// what was seen, sent and answered, and why it matters, and a summary.
std::string FindingsText(const char* szParty, const Findings& findings);
nlohmann::ordered_json FindingsJson(const char* szParty, const Findings& findings);

/// "The server MUST ...".
std::string Sentence(const char* szParty, const Rule& rule);
/// How many rules of each level have which outcome, a line a level.
std::string SummaryText(const Findings& findings);

/// The rules alone, each with a line of why.
std::string RulesText(const char* szParty, const std::vector<Rule>& rules);

/// Whether every rule that says MUST is kept, and was examined.
bool Conforms(const Findings& findings);

} // namespace Tarvane::Conform
