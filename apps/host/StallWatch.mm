#import "apps/host/StallWatch.h"

#import <AppKit/AppKit.h>

#include <objc/runtime.h>

#include <cstdint>
#include <map>
#include <optional>

namespace Tarvane
{
namespace
{

struct Watched
{
    StallCause cause;
    IMP original;
};

// By the selector's name.
std::map<std::string, Watched> watched;
CStalls* pStalls = nullptr;

// Methods have types of their own; between them and IMP the way is over the plainest one.
using AnyFunction = void (*)();

// Takes the place of a method with these arguments, and calls it.
template <typename... Arguments> void CallMeasured(id view, SEL selector, Arguments... arguments)
{
    const Watched& method = watched.at(sel_getName(selector));
    std::optional<CStalls::CStay> stay;
    if (pStalls != nullptr)
    {
        stay.emplace(*pStalls, method.cause);
    }
    const auto fnOriginal = (void (*)(id, SEL, Arguments...))(AnyFunction)method.original;
    fnOriginal(view, selector, arguments...);
}

template <typename... Arguments> void Watch(Class viewClass, const char* szMethod, StallCause cause)
{
    const SEL selector = sel_registerName(szMethod);
    const Method method = class_getInstanceMethod(viewClass, selector);
    if (method == nullptr || watched.count(szMethod) != 0)
    {
        return;
    }
    watched[szMethod] = {cause, method_getImplementation(method)};
    // The class's own from here on, and nobody else's, where it is one that it inherits.
    class_replaceMethod(viewClass, selector, (IMP)(AnyFunction)&CallMeasured<Arguments...>,
                        method_getTypeEncoding(method));
}

} // namespace

CStallWatch::CStallWatch(Class viewClass, CStalls& stalls)
{
    Watch<id>(viewClass, "menuWillOpen:", StallCause::Menu);
    Watch<id>(viewClass, "OnTrack:", StallCause::TrackChoice);
    Watch<id, std::int32_t>(viewClass, "TKSwitchChange:ModifierFlags:", StallCause::Toggle);
    Watch<>(viewClass, "TNProperty_ArmCapture", StallCause::Arming);
    Watch<>(viewClass, "TNProperty_Elements", StallCause::Delivery);
    Watch<>(viewClass, "kTNProperty_CurrentCaptureLength", StallCause::Progress);
    // The view and all that is in it, by both ways that lead to a drawing.
    Watch<NSRect>(viewClass, "displayIfNeededInRectIgnoringOpacity:", StallCause::Drawing);
    Watch<NSRect, NSGraphicsContext*>(viewClass,
                                      "displayRectIgnoringOpacity:inContext:", StallCause::Drawing);
    pStalls = &stalls;
}

CStallWatch::~CStallWatch() { pStalls = nullptr; }

} // namespace Tarvane
