// What the neighbours of the view have to keep, and what an examination found.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace Tarvane::Conform
{

enum class Level
{
    Must,   ///< Takes are lost, doubled or misplaced without it.
    Should, ///< Something beside the capture of takes suffers.
};

struct Rule
{
    const char* szId;
    Level level;
    const char* szText; ///< Completes "The server MUST" or "The plug-in SHOULD".
    const char* szWhy;
};

enum class Outcome
{
    Kept,
    Broken,
    NotExamined,
};

struct Finding
{
    Rule rule;
    Outcome outcome = Outcome::Kept;
    std::string strSeen;              ///< Why it is not kept, or not examined.
    std::vector<std::string> told{};  ///< What was sent and came back last, a line each.
    std::vector<std::string> tried{}; ///< What it was examined with, where that says something.
};

using Findings = std::vector<Finding>;

/// Thrown by an examination: the rule is broken, and this was seen.
class CBroken : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Thrown by an examination: what it needs is not there, or another rule stands in its way.
class CNotExaminable : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What came of an examination of the rule with what it needs.
template <typename ARule, typename Bench> Finding ExamineRule(const ARule& rule, const Bench& bench)
{
    try
    {
        rule.examine(bench);
        return {rule, Outcome::Kept, ""};
    }
    catch (const CBroken& error)
    {
        return {rule, Outcome::Broken, error.what()};
    }
    catch (const CNotExaminable& error)
    {
        return {rule, Outcome::NotExamined, error.what()};
    }
}

} // namespace Tarvane::Conform
