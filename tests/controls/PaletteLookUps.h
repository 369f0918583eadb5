// Notes what is asked of the palette, in the list of RecordingCoreGraphics.
#pragma once

namespace TarvaneTests
{

/// While it lives:
///
///     "IsGradient <module>/<component>"
///     "Find <module>/<component>"
///     "FindCGColorRef <module>/<component>"
class NotedLookUps
{
public:
    NotedLookUps();
    ~NotedLookUps();
    NotedLookUps(const NotedLookUps&) = delete;
    NotedLookUps& operator=(const NotedLookUps&) = delete;
};

} // namespace TarvaneTests
