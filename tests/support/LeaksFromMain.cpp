// Looks for leaks from main() on. What libraries allocate while they are loaded, such as the
// Objective-C runtime for each class, they keep for good: not to hear of it saves every process the
// reading of all symbols, which takes longer than most tests.
#include <sanitizer/lsan_interface.h>

extern "C" int __real_main(int nArguments, char** ppArguments, char** ppEnvironment);

extern "C" int __wrap_main(int nArguments, char** ppArguments, char** ppEnvironment)
{
    __lsan_enable();
    return __real_main(nArguments, ppArguments, ppEnvironment);
}

// Runs before the constructors of shared libraries.
__attribute__((section(".preinit_array"), used)) static void (*const pBeforeAll)() = __lsan_disable;
