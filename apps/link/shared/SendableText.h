// What can go to the server as it is.
#pragma once

#include <string>

namespace Tarvane::Link
{

/// Throws CUsageError, which begins with strWhat, for text that is no UTF-8 or that a NUL would cut
/// short.
void RequireSendable(const std::string& strText, const std::string& strWhat);

/// The full path of a file as scripts quote it. Throws CUsageError for one that would end its
/// quotation.
std::string QuotablePath(const std::string& strFile);

} // namespace Tarvane::Link
