// The statuses of property calls, with the numbers that audio units have for them.
#pragma once

#include <cstdint>

namespace Tarvane
{

constexpr std::int32_t kPropertyDone = 0;
constexpr std::int32_t kPropertyErr_InvalidProperty = -10879;
constexpr std::int32_t kPropertyErr_InvalidParameter = -10878;
constexpr std::int32_t kPropertyErr_InvalidElement = -10877;
constexpr std::int32_t kPropertyErr_InvalidScope = -10866;
constexpr std::int32_t kPropertyErr_NotWritable = -10865;
constexpr std::int32_t kPropertyErr_InvalidPropertyValue = -10851;

/// The one scope of all properties.
constexpr std::uint32_t kPropertyScope_Global = 0;

} // namespace Tarvane
