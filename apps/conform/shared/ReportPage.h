#pragma once

#include "apps/conform/shared/Rule.h"

#include <string>

namespace Tarvane::Conform
{

/// Who was examined.
struct Subject
{
    std::string strParty;   ///< "server" or "plug-in"
    std::string strName;    ///< under which it was found
    std::string strVersion; ///< as it says itself; empty when it does not
};

/// The findings as a page of HTML that a maker can publish: versions, what was tried, and what
/// came of each rule. It needs no other file.
std::string ReportPage(const Subject& subject, const Findings& findings);

} // namespace Tarvane::Conform
