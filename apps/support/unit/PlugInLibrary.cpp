#include "apps/support/unit/PlugInLibrary.h"

#include "apps/support/PlugInEntry.h"
#include "apps/support/program/CommandLine.h"

#include <CoreFoundation/CoreFoundation.h>

#include <dlfcn.h>
#include <filesystem>

namespace Tarvane
{
namespace
{

template <typename Function> Function* Exported(void* pLibrary, const char* szName)
{
    return reinterpret_cast<Function*>(dlsym(pLibrary, szName));
}

AudioComponent Registered(AudioComponentFactoryFunction pFactory)
{
    AudioComponentDescription description{};
    description.componentType = kAudioUnitType_Effect;
    description.componentSubType = 'TnCf';
    description.componentManufacturer = 'Tarv';
    const CFStringRef strName = CFStringCreateWithCString(
        kCFAllocatorDefault, "Tarvane: Under Examination", kCFStringEncodingUTF8);
    const AudioComponent pComponent =
        AudioComponentRegister(&description, strName, 0x00010000, pFactory);
    CFRelease(strName);
    return pComponent;
}

} // namespace

CPlugInLibrary::CPlugInLibrary(const std::string& strPath)
{
    void* pLibrary = dlopen(std::filesystem::absolute(strPath).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (pLibrary == nullptr)
        throw CUsageError(std::string("the library cannot be loaded: ") + dlerror());
    const auto pFactory =
        Exported<decltype(TarvaneLinkSignalSideFactory)>(pLibrary, "TarvaneLinkSignalSideFactory");
    if (pFactory == nullptr)
        throw CUsageError(strPath + " exports no TarvaneLinkSignalSideFactory, which makes an "
                                    "instance (apps/support/PlugInEntry.h).");
    m_pComponent = Registered(pFactory);
    m_pPlay = Exported<decltype(TarvaneConformPlay)>(pLibrary, "TarvaneConformPlay");
}

} // namespace Tarvane
