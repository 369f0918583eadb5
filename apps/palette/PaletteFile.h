// The palette as a binary session file. Main thread, as all of the palette.
#pragma once

#include <filesystem>

namespace Tarvane
{

/// Puts the file's entries into the palette, in place of those of the same codes. Throws
/// CUsageError for a file that is no palette, or in which an entry or a stop cannot be read; the
/// palette is then as it was.
void LoadPalette(const std::filesystem::path& path);

/// Writes the palette to "<name>.storing", reads that back, and puts it in the file's place. Throws
/// std::runtime_error; the file is then as it was.
void StorePalette(const std::filesystem::path& path);

} // namespace Tarvane
