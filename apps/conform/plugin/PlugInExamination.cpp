#include "apps/conform/plugin/PlugInExamination.h"

#include "apps/conform/shared/Report.h"
#include "apps/conform/shared/WorkFolder.h"
#include "apps/support/process/ChildProcess.h"
#include "apps/support/program/CommandLine.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace Tarvane::Conform
{
namespace
{

// A rule waits for a few things one after another.
constexpr double kTimeoutsARule = 4.0;
constexpr int kSignalled = 128;

constexpr char szUnusable[] = "unusable";

const PlugInRule& RuleOf(const std::vector<PlugInRule>& rules, const std::string& strId)
{
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const PlugInRule& rule) { return rule.szId == strId; });
    if (found == rules.end())
        throw CUsageError("there is no rule " + strId + "; see --list.");
    return *found;
}

std::vector<PlugInRule> Chosen(const std::vector<std::string>& ids)
{
    const std::vector<PlugInRule> rules = PlugInRules();
    if (ids.empty())
        return rules;
    std::vector<PlugInRule> chosen;
    for (const std::string& strId : ids)
        chosen.push_back(RuleOf(rules, strId));
    return chosen;
}

std::string LastLine(const std::string& strText)
{
    std::istringstream lines(strText);
    std::string strLast;
    for (std::string strLine; std::getline(lines, strLine);)
        if (!strLine.empty())
            strLast = strLine;
    return strLast;
}

std::string HowItEnded(int nExitCode, const CChildProcess& child)
{
    const std::string strLast = LastLine(child.ErrorOutput());
    return (nExitCode > kSignalled ? "signal " + std::to_string(nExitCode - kSignalled)
                                   : "exit code " + std::to_string(nExitCode)) +
           " ended the process" + (strLast.empty() ? "" : "; its last line: " + strLast);
}

std::string Seconds(double dSeconds)
{
    std::ostringstream text;
    text << dSeconds;
    return text.str();
}

Finding FindingOf(const PlugInRule& rule, const nlohmann::json& told)
{
    const std::string strOutcome = told.at("outcome");
    const std::string strSeen = told.at("seen");
    if (strOutcome == szUnusable)
        throw CUsageError(strSeen);
    for (const Outcome outcome : {Outcome::Kept, Outcome::Broken, Outcome::NotExamined})
        if (strOutcome == NameOf(outcome))
            return {rule, outcome, strSeen};
    throw std::runtime_error("a rule ended with \"" + strOutcome + "\".");
}

Finding ExamineApart(const PlugInRule& rule, const PlugInOptions& options)
{
    CChildProcess child({ProgramNamed("tarvane-conform").string(), "plugin", options.strLibrary,
                         "--timeout", Seconds(options.dTimeout), "--examine", rule.szId});
    const double dLimit = kTimeoutsARule * options.dTimeout;
    const auto limit = std::chrono::milliseconds(static_cast<long>(dLimit * 1000.0));
    const std::optional<int> exitCode = child.WaitForEnd(limit);
    if (!exitCode)
    {
        child.Kill();
        return {rule, Outcome::Broken,
                "the plug-in hangs: nothing came of it in " + Seconds(dLimit) + " seconds"};
    }
    const auto told = nlohmann::json::parse(child.Output(), nullptr, false);
    if (told.is_discarded())
        return {rule, Outcome::Broken, HowItEnded(*exitCode, child)};
    return FindingOf(rule, told);
}

// Takes the standard output away from the plug-in.
int TakeOutput()
{
    const int nOutput = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    return nOutput;
}

} // namespace

Findings ExaminePlugIn(const PlugInOptions& options)
{
    // What the plug-in captures, and what it notes of it, is not this user's.
    const CWorkFolder folder;
    setenv("TMPDIR", folder.Path().c_str(), 1);
    setenv("XDG_STATE_HOME", folder.Path().c_str(), 1);
    return ExamineInOrder(Chosen(options.rules),
                          [&](const PlugInRule& rule) { return ExamineApart(rule, options); });
}

void ExamineRuleAndEnd(const PlugInOptions& options, const std::string& strRule)
{
    const int nOutput = TakeOutput();
    nlohmann::json told;
    try
    {
        const CPlugInLibrary library(options.strLibrary);
        const Finding finding =
            ExamineRule(RuleOf(PlugInRules(), strRule), PlugInBench{library, options.dTimeout});
        told = {{"outcome", NameOf(finding.outcome)}, {"seen", finding.strSeen}};
    }
    catch (const CUsageError& error)
    {
        told = {{"outcome", szUnusable}, {"seen", error.what()}};
    }
    const std::string strTold =
        told.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    (void)!write(nOutput, strTold.data(), strTold.size());
    // What a library does when its process ends is no part of the contract.
    std::_Exit(kExitDone);
}

Findings ExamineInOrder(const std::vector<PlugInRule>& rules,
                        const std::function<Finding(const PlugInRule&)>& examine)
{
    Findings findings;
    std::string strInTheWay;
    std::string strNoCapture;
    for (const PlugInRule& rule : rules)
    {
        if (!strInTheWay.empty())
            findings.push_back({rule, Outcome::NotExamined, strInTheWay});
        else if (rule.fCaptures && !strNoCapture.empty())
            findings.push_back({rule, Outcome::NotExamined, strNoCapture});
        else
            findings.push_back(examine(rule));
        const Finding& finding = findings.back();
        if (finding.outcome == Outcome::Kept)
            continue;
        if (rule.szId == std::string_view(szOpening))
            strInTheWay = "no rule can be examined without the first";
        if (rule.szId == std::string_view(szAnnouncing))
            strNoCapture =
                finding.outcome == Outcome::Broken ? "no capture is announced" : finding.strSeen;
    }
    return findings;
}

std::vector<PlugInRule> PlugInRules()
{
    std::vector<PlugInRule> rules;
    for (const auto& list :
         {PropertyRules(), ListenerRules(), RecordRules(), QueueRules(), MannerRules()})
        rules.insert(rules.end(), list.begin(), list.end());
    return rules;
}

} // namespace Tarvane::Conform
