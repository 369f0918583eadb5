#include "tests/support/Growth.h"

#include "tests/support/LiveObjects.h"

#include <array>
#include <cstdio>
#include <filesystem>

#include <malloc.h>

// There when a sanitizer has taken the heap over.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace TarvaneTests
{
namespace
{

long BytesNow()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr)
        return static_cast<long>(__sanitizer_get_current_allocated_bytes());
    return static_cast<long>(mallinfo2().uordblks);
}

long DescriptorsNow()
{
    long nDescriptors = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        (void)entry;
        ++nDescriptors;
    }
    return nDescriptors;
}

long WindowsNow()
{
    long nLines = 0;
    FILE* pPipe = popen("xwininfo -root -tree", "r");
    std::array<char, 1000> line;
    while (pPipe != nullptr && std::fgets(line.data(), line.size(), pPipe) != nullptr)
        ++nLines;
    if (pPipe != nullptr)
        pclose(pPipe);
    return nLines;
}

} // namespace

CGrowth::CGrowth()
    : m_nObjects(LiveObjects()), m_nBytes(BytesNow()), m_nDescriptors(DescriptorsNow()),
      m_nWindows(WindowsNow())
{
}

long CGrowth::Objects() const
{
    return LiveObjects() - m_nObjects;
}

long CGrowth::Bytes() const
{
    return BytesNow() - m_nBytes;
}

long CGrowth::Descriptors() const
{
    return DescriptorsNow() - m_nDescriptors;
}

long CGrowth::Windows() const
{
    return WindowsNow() - m_nWindows;
}

} // namespace TarvaneTests
