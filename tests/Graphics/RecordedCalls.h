// What the drawing layer asks of the platform, one line a call, in order.
#pragma once

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <cstdio>
#include <string>
#include <vector>

namespace TarvaneTests
{

inline std::string Text(NSString* text) { return text ? [text UTF8String] : "nil"; }

inline std::string Text(double d)
{
    char text[40];
    snprintf(text, sizeof text, "%.17g", d);
    return text;
}

inline std::string Text(NSPoint point) { return Text(point.x) + " " + Text(point.y); }

inline std::string Text(NSRect rect)
{
    return Text(rect.origin) + " " + Text(rect.size.width) + " " + Text(rect.size.height);
}

/// The calls of the test at hand.
inline std::vector<std::string>& Calls()
{
    static std::vector<std::string> calls;
    return calls;
}

inline void Note(const std::string& strCall) { Calls().push_back(strCall); }

class RecordedCalls : public testing::Test
{
  protected:
    ~RecordedCalls() override { Calls().clear(); }
};

} // namespace TarvaneTests
