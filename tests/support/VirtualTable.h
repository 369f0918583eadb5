#pragma once

#include <cstddef>
#include <cstring>

namespace TarvaneTests
{

/// The place of a virtual operation in its class's table, read from the form that a member pointer
/// has in the platform's C++ ABI. A virtual destructor takes two places.
template <typename Operation> long Slot(Operation operation)
{
    std::ptrdiff_t pointer[2];
    static_assert(sizeof pointer == sizeof operation);
    std::memcpy(pointer, &operation, sizeof pointer);
    return (pointer[0] & ~1) / static_cast<long>(sizeof(void*));
}

} // namespace TarvaneTests
