// The property contract: what the view needs of a plug-in's signal side.
#pragma once

#include "apps/conform/plugin/PlugInPeer.h"
#include "apps/conform/shared/Rule.h"

#include <vector>

namespace Tarvane::Conform
{

struct PlugInRule : Rule
{
    /// Returns when the rule is kept; throws CBroken or CNotExaminable. Opens instances of its own.
    void (*examine)(const PlugInBench& bench);
    bool fCaptures = false; ///< Cannot be examined when nothing is captured.
};

/// That it opens, without which no other can be examined, and that captures are announced, without
/// which none about captures can.
inline constexpr char szOpening[] = "P1";
inline constexpr char szAnnouncing[] = "P12";

/// All rules, in the order in which they are examined.
std::vector<PlugInRule> PlugInRules();

/// By subject, each list in a source file of its own.
std::vector<PlugInRule> PropertyRules();
std::vector<PlugInRule> ListenerRules();
std::vector<PlugInRule> RecordRules();
std::vector<PlugInRule> QueueRules();
std::vector<PlugInRule> MannerRules();

} // namespace Tarvane::Conform
