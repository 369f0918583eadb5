#include "tests/support/RecordingCoreGraphics.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

struct CGContext
{
};
struct CGColorSpace
{
    size_t nReferences;
    size_t nSerial;
};
struct CGColor
{
    size_t nReferences;
    CGFloat components[4];
};
struct CGGradient
{
    size_t nReferences;
    std::string strStops;
};
struct CGFunction
{
    size_t nReferences;
    void* info;
    size_t nOutputs;
    CGFunctionCallbacks callbacks;
    std::string strText;
};
struct CGShading
{
    size_t nReferences;
    std::string strText;
};

namespace
{

std::vector<std::string> calls;
bool fRecording = true;
size_t nLive;
size_t nSpaces;
size_t nLastColourSpace;
size_t nLastGradientSpace;
std::vector<std::string> createdGradients;
CGContext context;

std::string Format(const char* szFormat, ...) __attribute__((format(printf, 1, 2)));
std::string Format(const char* szFormat, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, szFormat);
    vsnprintf(text, sizeof text, szFormat, arguments);
    va_end(arguments);
    return text;
}

std::string Number(CGFloat value) { return Format("%.17g", value); }

std::string Numbers(std::initializer_list<CGFloat> values)
{
    std::string strText;
    for (const CGFloat value : values)
        strText += " " + Number(value);
    return strText;
}

std::string Text(CGRect r)
{
    return Numbers({r.origin.x, r.origin.y, r.size.width, r.size.height});
}

std::string Text(CGColorRef color)
{
    if (!color)
        return "null";
    const CGFloat* c = color->components;
    return "rgba(" + Number(c[0]) + " " + Number(c[1]) + " " + Number(c[2]) + " " + Number(c[3]) +
           ")";
}

template <class... Arguments> void Note(CGContextRef target, const Arguments&... arguments)
{
    if (fRecording)
        calls.push_back((target == &context ? std::string() : std::string("foreign ")) +
                        (std::string() + ... + arguments));
}

template <class Object> Object* Created(Object* object)
{
    ++nLive;
    return object;
}

template <class Object> void Released(Object* object)
{
    if (object && --object->nReferences == 0)
    {
        --nLive;
        delete object;
    }
}

} // namespace

namespace TarvaneTests
{

const std::vector<std::string>& GraphicsCalls() { return calls; }

void ResetGraphicsCalls()
{
    calls.clear();
    nSpaces = 0;
    nLastColourSpace = 0;
    nLastGradientSpace = 0;
    createdGradients.clear();
}

void NoteGraphicsCall(const std::string& strCall) { calls.push_back(strCall); }

void SetGraphicsRecording(bool fRecord) { fRecording = fRecord; }

size_t LiveGraphicsObjects() { return nLive; }

size_t LastColourSpace() { return nLastColourSpace; }

size_t LastGradientSpace() { return nLastGradientSpace; }

const std::vector<std::string>& CreatedGradients() { return createdGradients; }

CGContextRef RecordingContext() { return &context; }

} // namespace TarvaneTests

CGRect CGRectInset(CGRect r, CGFloat dx, CGFloat dy)
{
    return CGRectMake(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx,
                      r.size.height - 2 * dy);
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB() { return Created(new CGColorSpace{1, ++nSpaces}); }

void CGColorSpaceRelease(CGColorSpaceRef space)
{
    if (fRecording && space)
        calls.push_back("ReleaseSpace");
    Released(space);
}

size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space) { return space ? 3 : 0; }

CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components)
{
    nLastColourSpace = space ? space->nSerial : 0;
    if (!space || !components)
        return nullptr;
    auto* color = Created(new CGColor{1, {}});
    std::copy_n(components, 4, color->components);
    return color;
}

CGColorRef CGColorRetain(CGColorRef color)
{
    if (color)
        ++color->nReferences;
    return color;
}

void CGColorRelease(CGColorRef color) { Released(color); }

const CGFloat* CGColorGetComponents(CGColorRef color) { return color->components; }

size_t CGColorGetNumberOfComponents(CGColorRef) { return 4; }

CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef space, CFArrayRef colors,
                                         const CGFloat* locations)
{
    nLastGradientSpace = space ? space->nSerial : 0;
    auto* gradient = Created(new CGGradient{1, ""});
    for (CFIndex i = 0; i < CFArrayGetCount(colors); ++i)
        gradient->strStops += (i ? ", " : "") + Number(locations[i]) + ": " +
                              Text((CGColorRef)CFArrayGetValueAtIndex(colors, i));
    createdGradients.push_back(gradient->strStops);
    return gradient;
}

void CGGradientRelease(CGGradientRef gradient) { Released(gradient); }

CGFunctionRef CGFunctionCreate(void* info, size_t domainDimension, const CGFloat* domain,
                               size_t rangeDimension, const CGFloat* range,
                               const CGFunctionCallbacks* callbacks)
{
    auto* function = Created(new CGFunction{1, info, rangeDimension, *callbacks, ""});
    function->strText = Format("version %u info %zu domain", callbacks->version, (size_t)info);
    for (size_t i = 0; i < 2 * domainDimension; ++i)
        function->strText += " " + Number(domain[i]);
    function->strText += " range";
    for (size_t i = 0; i < 2 * rangeDimension; ++i)
        function->strText += " " + Number(range[i]);
    function->strText += callbacks->releaseInfo ? " release" : " keep";
    return function;
}

void CGFunctionRelease(CGFunctionRef function)
{
    if (fRecording && function)
        calls.push_back("ReleaseFunction");
    Released(function);
}

CGShadingRef CGShadingCreateAxial(CGColorSpaceRef, CGPoint start, CGPoint end,
                                  CGFunctionRef function, bool extendStart, bool extendEnd)
{
    std::string strText = "axial" + Numbers({start.x, start.y, end.x, end.y}) +
                          (extendStart ? " before" : "") + (extendEnd ? " after" : "") + " " +
                          function->strText;
    for (const CGFloat t : {0.0, 1.0})
    {
        std::vector<CGFloat> outputs(function->nOutputs);
        function->callbacks.evaluate(function->info, &t, outputs.data());
        strText += t ? " to" : " from";
        for (const CGFloat output : outputs)
            strText += Format(" %.3f", output);
    }
    return Created(new CGShading{1, strText});
}

void CGShadingRelease(CGShadingRef shading)
{
    if (fRecording && shading)
        calls.push_back("ReleaseShading");
    Released(shading);
}

void CGContextSaveGState(CGContextRef c) { Note(c, "SaveGState"); }

void CGContextRestoreGState(CGContextRef c) { Note(c, "RestoreGState"); }

void CGContextBeginPath(CGContextRef c) { Note(c, "BeginPath"); }

void CGContextMoveToPoint(CGContextRef c, CGFloat x, CGFloat y)
{
    if (fRecording)
        Note(c, "MoveToPoint", Numbers({x, y}));
}

void CGContextAddLineToPoint(CGContextRef c, CGFloat x, CGFloat y)
{
    if (fRecording)
        Note(c, "AddLineToPoint", Numbers({x, y}));
}

void CGContextAddArcToPoint(CGContextRef c, CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2,
                            CGFloat radius)
{
    if (fRecording)
        Note(c, "AddArcToPoint", Numbers({x1, y1, x2, y2, radius}));
}

void CGContextAddRect(CGContextRef c, CGRect rect)
{
    if (fRecording)
        Note(c, "AddRect", Text(rect));
}

void CGContextClosePath(CGContextRef c) { Note(c, "ClosePath"); }

void CGContextClip(CGContextRef c) { Note(c, "Clip"); }

void CGContextSetFillColorWithColor(CGContextRef c, CGColorRef color)
{
    if (fRecording)
        Note(c, "SetFillColor ", Text(color));
}

void CGContextFillRect(CGContextRef c, CGRect rect)
{
    if (fRecording)
        Note(c, "FillRect", Text(rect));
}

void CGContextDrawLinearGradient(CGContextRef c, CGGradientRef gradient, CGPoint start, CGPoint end,
                                 CGGradientDrawingOptions options)
{
    if (fRecording)
        Note(c, "DrawLinearGradient [", gradient ? gradient->strStops : std::string("null"), "]",
             Numbers({start.x, start.y, end.x, end.y}), Format(" options %u", options));
}

void CGContextDrawShading(CGContextRef c, CGShadingRef shading)
{
    if (fRecording)
        Note(c, "DrawShading ", shading->strText);
}
