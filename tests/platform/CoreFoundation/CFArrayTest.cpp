#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

namespace
{

int g_nRetained;
int g_nReleased;

const void* CountRetain(CFAllocatorRef, const void* value)
{
    ++g_nRetained;
    return value;
}

void CountRelease(CFAllocatorRef, const void*)
{
    ++g_nReleased;
}

TEST(CFArray, WithoutCallBacksHoldsPlainPointers)
{
    // Addresses that nothing may follow.
    const void* values[] = {reinterpret_cast<void*>(1), nullptr, reinterpret_cast<void*>(3)};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 3, nullptr);
    EXPECT_EQ(CFArrayGetCount(array), 3);
    for (CFIndex i = 0; i < 3; ++i)
        EXPECT_EQ(CFArrayGetValueAtIndex(array, i), values[i]);
    CFRelease(array);
}

TEST(CFArray, WithoutCallBacksRetainsNothing)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const void* values[] = {data, data};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 2, nullptr);
    EXPECT_EQ(CFGetRetainCount(data), 1);
    CFRelease(array);
    EXPECT_EQ(CFGetRetainCount(data), 1);
    CFRelease(data);
}

TEST(CFArray, OfObjectsRetainsThemWhileItLives)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const void* values[] = {data, data};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks);
    EXPECT_EQ(CFGetRetainCount(data), 3);
    CFRelease(array);
    EXPECT_EQ(CFGetRetainCount(data), 1);
    CFRelease(data);
}

TEST(CFArray, OwnCallBacksAreCalledOnceAValue)
{
    g_nRetained = g_nReleased = 0;
    const CFArrayCallBacks callBacks = {0, CountRetain, CountRelease, nullptr, nullptr};
    const void* values[] = {&g_nRetained, &g_nReleased};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 2, &callBacks);
    EXPECT_EQ(g_nRetained, 2);
    EXPECT_EQ(g_nReleased, 0);
    CFRelease(array);
    EXPECT_EQ(g_nReleased, 2);
}

TEST(CFArray, CallBacksMayBeMissing)
{
    const CFArrayCallBacks none = {0, nullptr, nullptr, nullptr, nullptr};
    const void* values[] = {reinterpret_cast<void*>(1)};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 1, &none);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), values[0]);
    CFRelease(array);
}

TEST(CFArray, KeepsItsOwnCopyOfThePointers)
{
    int value = 0;
    const void* values[] = {&value};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 1, nullptr);
    values[0] = nullptr;
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), &value);
    CFRelease(array);
}

TEST(CFArray, IndexOutsideGivesNull)
{
    int value = 0;
    const void* values[] = {&value};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 1, nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, -1), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(nullptr, 0), nullptr);
    CFRelease(array);
}

TEST(CFArray, BadArgumentsGiveNull)
{
    const void* values[] = {nullptr};
    EXPECT_EQ(CFArrayCreate(kCFAllocatorDefault, values, -1, nullptr), nullptr);
    EXPECT_EQ(CFArrayCreate(kCFAllocatorDefault, nullptr, 1, nullptr), nullptr);
}

TEST(CFArray, MayBeEmpty)
{
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, nullptr, 0, nullptr);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(CFArrayGetCount(array), 0);
    CFRelease(array);
}

} // namespace
