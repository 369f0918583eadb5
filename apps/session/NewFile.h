// Files that a command makes.
#pragma once

#include <filesystem>
#include <string>

namespace Tarvane::Session
{

/// Writes the text to a new file, whole or not at all; to the standard output without a name.
/// Throws CUsageError where anything is there already, and where nothing can be written.
void WriteNew(const std::filesystem::path& file, const std::string& strText);

} // namespace Tarvane::Session
