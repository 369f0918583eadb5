// What the programs that open a window have in common. Main thread only.
#pragma once

#include <string>

@class NSView;

namespace Tarvane
{

/// Makes the application object, from which the program's own arguments are hidden: it takes bare
/// words for documents to open. Throws CUsageError where there is no display to open a window on.
void OpenApplication(char** argv);

/// Ends the application's run. Thread of the run loop.
void StopApplication();

/// What the view shows now, as a PNG file. Its window must be on the screen; it need not be in
/// front, nor lie within the screen. Throws std::runtime_error.
std::string TakePicture(NSView* view);

} // namespace Tarvane
