#pragma once

extern "C" void __lsan_disable() __attribute__((weak));
extern "C" void __lsan_enable() __attribute__((weak));

/// What is allocated in its life may stay allocated: a leak checker, if there is one, looks away.
class LeakByDesign
{
public:
    LeakByDesign()
    {
        if (__lsan_disable != nullptr)
            __lsan_disable();
    }
    ~LeakByDesign()
    {
        if (__lsan_enable != nullptr)
            __lsan_enable();
    }
    LeakByDesign(const LeakByDesign&) = delete;
    LeakByDesign& operator=(const LeakByDesign&) = delete;
};
