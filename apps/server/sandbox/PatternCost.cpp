#include "apps/server/sandbox/PatternCost.h"

#include <algorithm>
#include <cmath>

namespace Tarvane::Server
{

namespace
{

// What a pattern holds that costs more than a step.
struct Shape
{
    int nRepetitions = 0; // * + -
    int nOptions = 0;     // ?
    int nScans = 0;       // %b and back references read on through the text by themselves
};

// Bytes of the set "[...]" that begins the pattern; all of it when the set has no end.
std::size_t SetLength(std::string_view pattern)
{
    std::size_t nPlace = 1;
    if (nPlace < pattern.size() && pattern[nPlace] == '^')
        nPlace++;
    // A "]" that comes first stands for itself.
    do
    {
        if (nPlace < pattern.size() && pattern[nPlace] == '%')
            nPlace++;
        nPlace++;
    } while (nPlace < pattern.size() && pattern[nPlace] != ']');
    return nPlace < pattern.size() ? nPlace + 1 : pattern.size();
}

struct Item
{
    std::size_t nBytes;
    bool fRepeatable; // false: a "*" that follows is an item of its own
};

// The item that begins the pattern, without what repeats it.
Item FirstItem(std::string_view pattern)
{
    if (pattern[0] == '[')
        return {SetLength(pattern), true};
    if (pattern[0] == '(' || pattern[0] == ')')
        return {1, false};
    if (pattern[0] != '%' || pattern.size() == 1)
        return {1, true};
    const char cKind = pattern[1];
    if (cKind == 'b')
        return {4, false};
    if (cKind == 'f')
        return {2 + (pattern.size() > 2 ? SetLength(pattern.substr(2)) : 0), false};
    return {2, cKind < '0' || cKind > '9'};
}

bool ScansByItself(std::string_view pattern)
{
    return pattern.size() > 1 && pattern[0] == '%' &&
           (pattern[1] == 'b' || (pattern[1] >= '0' && pattern[1] <= '9'));
}

Shape ShapeOf(std::string_view pattern)
{
    Shape shape;
    while (!pattern.empty())
    {
        const Item item = FirstItem(pattern);
        shape.nScans += ScansByItself(pattern);
        pattern.remove_prefix(std::min(item.nBytes, pattern.size()));
        if (pattern.empty() || !item.fRepeatable)
            continue;
        const char cSuffix = pattern[0];
        shape.nOptions += cSuffix == '?';
        shape.nRepetitions += cSuffix == '*' || cSuffix == '+' || cSuffix == '-';
        if (cSuffix == '?' || cSuffix == '*' || cSuffix == '+' || cSuffix == '-')
            pattern.remove_prefix(1);
    }
    return shape;
}

} // namespace

double PatternCost(std::string_view pattern, std::size_t nTextBytes, bool fAnchors)
{
    const bool fAnchored = fAnchors && !pattern.empty() && pattern[0] == '^';
    if (fAnchored)
        pattern.remove_prefix(1);
    const Shape shape = ShapeOf(pattern);
    const double dTries = static_cast<double>(nTextBytes) + 1;
    const double dWays =
        std::pow(dTries, shape.nRepetitions + (fAnchored ? 0 : 1)) * std::pow(2.0, shape.nOptions);
    return dWays * (static_cast<double>(pattern.size()) + 1 + shape.nScans * dTries);
}

} // namespace Tarvane::Server
