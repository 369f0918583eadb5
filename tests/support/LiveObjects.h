#pragma once

/// How many Objective-C objects have been made and not destroyed since the first call. Other
/// threads must be at rest.
long LiveObjects();
