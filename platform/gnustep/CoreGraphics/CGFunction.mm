#include "platform/gnustep/CoreGraphics/CGObjects.h"

#include <algorithm>

namespace
{
std::vector<CGFloat> CopyPairs(const CGFloat* pairs, size_t count)
{
    return pairs ? std::vector<CGFloat>(pairs, pairs + 2 * count) : std::vector<CGFloat>();
}

CGFloat Bounded(CGFloat value, const std::vector<CGFloat>& bounds, size_t index)
{
    if (bounds.empty())
        return value;
    return std::min(std::max(value, bounds[2 * index]), bounds[2 * index + 1]);
}
} // namespace

CGFunctionRef CGFunctionCreate(void* info, size_t domainDimension, const CGFloat* domain,
                               size_t rangeDimension, const CGFloat* range,
                               const CGFunctionCallbacks* callbacks)
{
    if (!callbacks || callbacks->version != 0 || !callbacks->evaluate)
        return nullptr;
    return new CGFunction{1,
                          info,
                          CopyPairs(domain, domainDimension),
                          CopyPairs(range, rangeDimension),
                          rangeDimension,
                          *callbacks};
}

void CGFunctionRelease(CGFunctionRef function)
{
    if (!ReleaseReference(function))
        return;
    if (function->callbacks.releaseInfo)
        function->callbacks.releaseInfo(function->info);
    delete function;
}

std::vector<CGFloat> EvaluateFunction(const CGFunction& function, CGFloat input)
{
    const CGFloat bounded = Bounded(input, function.domain, 0);
    std::vector<CGFloat> outputs(function.nOutputs);
    function.callbacks.evaluate(function.info, &bounded, outputs.data());
    for (size_t i = 0; i < outputs.size(); ++i)
        outputs[i] = Bounded(outputs[i], function.range, i);
    return outputs;
}
