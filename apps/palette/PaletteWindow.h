// Where the sheet is shown. Main thread; the application object must be there.
#pragma once

#include <filesystem>

namespace Tarvane
{

// Writes a picture of the whole sheet. Throws std::runtime_error; a file that is there already is
// replaced whole or not at all.
void SavePicture(const std::filesystem::path& path);

// Shows the sheet in a window and returns when that is closed.
void ShowSheet();

} // namespace Tarvane
