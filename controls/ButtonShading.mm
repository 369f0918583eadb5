#include "controls/ButtonShading.h"

#include <cstdint>

namespace
{
template <class Number>
void Shade(const Number (&c)[4], CGFloat base, void* info, const CGFloat* in, CGFloat* out)
{
    const auto n = intptr_t(info);
    const CGFloat t = in[0];
    for (intptr_t i = 0; i < n - 1; ++i)
        out[i] = c[i] * (1 - t) + base;
    out[n - 1] = 1.0;
}
} // namespace

void TKShaderNormalBtn(void* info, const CGFloat* in, CGFloat* out)
{
    static constexpr double c[4] = {0.4, 0.4, 0.4, 0.0};
    Shade(c, 0.2, info, in, out);
}

void TKShaderSelectedBtn(void* info, const CGFloat* in, CGFloat* out)
{
    static constexpr float c[4] = {0.4f, 0.4f, 0.4f, 0.0f}; // in 32 bits, unlike the others
    Shade(c, 0.4, info, in, out);
}

void TKShaderDisabledNormalBtn(void* info, const CGFloat* in, CGFloat* out)
{
    static constexpr double c[4] = {0.15, 0.15, 0.15, 0.0};
    Shade(c, 0.75, info, in, out);
}

// A disabled button looks the same highlighted or not, on purpose.
void TKShaderDisabledSelectedBtn(void* info, const CGFloat* in, CGFloat* out)
{
    TKShaderDisabledNormalBtn(info, in, out);
}

CGFunctionRef GetBtnShader(CGColorSpaceRef space, CGFunctionEvaluateCallback shader)
{
    static constexpr CGFloat input_value_range[2] = {0, 1};
    static constexpr CGFloat output_value_ranges[8] = {0, 1, 0, 1, 0, 1, 0, 1};

    CGFunctionCallbacks callbacks = {0, shader, nullptr};
    const size_t n = CGColorSpaceGetNumberOfComponents(space) + 1;
    return CGFunctionCreate((void*)n, 1, input_value_range, n, output_value_ranges, &callbacks);
}
