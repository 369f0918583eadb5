// Where the sheet is shown. Main thread; the application object must be there.
#pragma once

#import <AppKit/AppKit.h>

#include <filesystem>

namespace Tarvane
{

/// Writes a picture of the whole sheet. Throws std::runtime_error; a file that is there already is
/// replaced whole or not at all.
void SavePicture(const std::filesystem::path& path);

/// A window as large as the sheet, where the screen has room for that, with scrollers where it has
/// not. Not shown yet; the caller is its owner.
NSWindow* MakeSheetWindow(NSView* sheet);

/// Shows the sheet in a window and returns when that is closed.
void ShowSheet();

} // namespace Tarvane
