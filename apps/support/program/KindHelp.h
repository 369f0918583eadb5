// What the help says of an option that takes names.
#pragma once

#include <string>

namespace Tarvane
{

/// The introduction, and a line for each kind with its name and its meaning.
template <typename Kinds> std::string HelpWithKinds(std::string strHelp, const Kinds& kinds)
{
    const char* szBefore = "\n";
    for (const auto& kind : kinds)
    {
        strHelp += szBefore + std::string(kind.szName) + ": " + kind.szMeaning;
        szBefore = ",\n";
    }
    return strHelp;
}

} // namespace Tarvane
