#pragma once

#include "apps/conform/plugin/PlugInRules.h"

#include <functional>
#include <string>
#include <vector>

namespace Tarvane::Conform
{

struct PlugInOptions
{
    std::string strLibrary;
    double dTimeout = 5.0;            ///< seconds that what must come may take
    std::vector<std::string> rules{}; ///< these alone; all when empty
};

/// Examines the plug-in in a library: each rule in a process of its own, which is ended when it
/// takes too long, so that nothing the plug-in does harms this one. Throws CUsageError when the
/// library cannot be used, or there is no rule of a name.
Findings ExaminePlugIn(const PlugInOptions& options);

/// What such a process does: examines one rule, tells the outcome on its standard output, and ends
/// the process. What the plug-in writes there goes to the standard error stream.
[[noreturn]] void ExamineRuleAndEnd(const PlugInOptions& options, const std::string& strRule);

/// Rules in their order, each by the function, but for those that one before it makes pointless.
Findings ExamineInOrder(const std::vector<PlugInRule>& rules,
                        const std::function<Finding(const PlugInRule&)>& examine);

} // namespace Tarvane::Conform
