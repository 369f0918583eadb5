// Looks for leaks from main() on, and not in what others are known to keep. Of each leak that is
// passed over by name a process reads all symbols first, which takes longer than most tests; so
// what libraries allocate while they are loaded is not heard of, nor what is kept of that behind
// it.
#include <sanitizer/lsan_interface.h>

#include <dlfcn.h>

#include <cstddef>
#include <cstdlib>

namespace
{

using FontFunction = void*(void* pConfig, void* pPattern, void* pLast);

FontFunction* pNextFontMatch;
FontFunction* pNextFontList;

// Looked up early: who calls these may hold a lock that the loader waits for.
void BeforeAll()
{
    __lsan_disable();
    pNextFontMatch = reinterpret_cast<FontFunction*>(dlsym(RTLD_NEXT, "FcFontMatch"));
    pNextFontList = reinterpret_cast<FontFunction*>(dlsym(RTLD_NEXT, "FcFontList"));
}

// Runs before the constructors of shared libraries.
__attribute__((section(".preinit_array"), used)) void (*const pBeforeAll)() = BeforeAll;

} // namespace

extern "C"
{

    // The Objective-C runtime's own tables of classes and methods, which live until the process
    // ends.
    void* objc_malloc(std::size_t nSize)
    {
        const __lsan::ScopedDisabler disabler;
        if (void* const pMemory = std::malloc(nSize))
        {
            return pMemory;
        }
        std::abort();
    }

    // GNUstep keeps what it is given of fonts.
    void* FcFontMatch(void* pConfig, void* pPattern, void* pResult)
    {
        const __lsan::ScopedDisabler disabler;
        return pNextFontMatch(pConfig, pPattern, pResult);
    }

    void* FcFontList(void* pConfig, void* pPattern, void* pObjects)
    {
        const __lsan::ScopedDisabler disabler;
        return pNextFontList(pConfig, pPattern, pObjects);
    }

    // GNUstep asks ImageMagick for all formats, which has 130 libraries loaded by every program.
    void* GetMagickInfoList(const char*, std::size_t* pCount, void*)
    {
        *pCount = 0;
        return nullptr;
    }

    int __real_main(int nArguments, char** ppArguments, char** ppEnvironment);

    int __wrap_main(int nArguments, char** ppArguments, char** ppEnvironment)
    {
        __lsan_enable();
        return __real_main(nArguments, ppArguments, ppEnvironment);
    }

} // extern "C"
