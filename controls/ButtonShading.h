// The fixed grey ramps of the shaded button style.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

/// info: the number of outputs, carried as a pointer-sized integer; in[0]: the place on the axis,
/// from 0 to 1. All outputs but the last are a shade of grey, the last is an alpha of 1.
void TKShaderNormalBtn(void* info, const CGFloat* in, CGFloat* out);
void TKShaderSelectedBtn(void* info, const CGFloat* in, CGFloat* out);
void TKShaderDisabledNormalBtn(void* info, const CGFloat* in, CGFloat* out);
void TKShaderDisabledSelectedBtn(void* info, const CGFloat* in, CGFloat* out);

/// A function of one input with an output for each component of the space and one for alpha. The
/// caller releases it with CGFunctionRelease.
CGFunctionRef GetBtnShader(CGColorSpaceRef space, CGFunctionEvaluateCallback shader);
