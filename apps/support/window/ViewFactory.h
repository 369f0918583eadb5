// The factory of a view bundle, as a host finds it.
#pragma once

#import <AudioUnit/AUCocoaUIView.h>

#include <filesystem>

namespace Tarvane
{

/// An instance of the bundle's principal class, which adopts AUCocoaUIBase; autoreleased. Throws
/// CUsageError when the bundle cannot be loaded or makes no plug-in views. Main thread.
id MakeViewFactory(const std::filesystem::path& path);

} // namespace Tarvane
