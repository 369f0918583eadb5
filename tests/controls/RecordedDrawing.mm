#include "tests/controls/RecordedDrawing.h"

#include "tests/support/RecordingCoreGraphics.h"

#include <objc/runtime.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <stdexcept>

@interface RecordingContextObject : NSObject
- (void*)graphicsPort;
@end

@implementation RecordingContextObject
- (void*)graphicsPort
{
    return TarvaneTests::RecordingContext();
}
@end

namespace
{

std::set<std::string> lostResources;
std::map<void*, std::string> imageNames;
NSDictionary* lastAttributes;
int nContextsAsked;
int nDigits;
NSSize imageSize;

// What stands in for a font of the platform.
struct LentFont
{
    CGFloat dSize;
    NSFont* font;
};
std::map<std::string, LentFont> lentFonts;

std::string Text(NSString* text) { return text ? [text UTF8String] : "none"; }

std::string Text(NSRect r)
{
    char text[200];
    snprintf(text, sizeof text, " %.*g %.*g %.*g %.*g", nDigits, r.origin.x, nDigits, r.origin.y,
             nDigits, r.size.width, nDigits, r.size.height);
    return text;
}

std::string NameOf(NSImage* image)
{
    const auto found = imageNames.find((void*)image);
    return found == imageNames.end() ? "unknown" : found->second;
}

void Note(const std::string& strCall) { TarvaneTests::NoteGraphicsCall(strCall); }

// A method of the platform and what stands in its place.
struct Replacement
{
    Class owner;
    SEL original;
    SEL replacement;

    void Exchange() const
    {
        Method a = class_getInstanceMethod(owner, original);
        Method b = class_getInstanceMethod(owner, replacement);
        if (!a || !b)
            throw std::logic_error("a method to be replaced is missing");
        method_exchangeImplementations(a, b);
    }
};

} // namespace

@interface NSImage (Recorded)
- (NSSize)recorded_size;
- (id)recorded_initWithContentsOfFile:(NSString*)path;
- (void)recorded_setFlipped:(BOOL)fFlipped;
- (void)recorded_drawInRect:(NSRect)target
                   fromRect:(NSRect)source
                  operation:(NSCompositingOperation)operation
                   fraction:(CGFloat)fraction;
@end

@implementation NSImage (Recorded)

- (NSSize)recorded_size
{
    return imageSize;
}

- (id)recorded_initWithContentsOfFile:(NSString*)path
{
    Note("LoadImage " + Text(path));
    if (!path)
    {
        [self release];
        return nil;
    }
    self = [self initWithSize:TarvaneTests::RecordedDrawing::kImageSize];
    imageNames[(void*)self] = Text([[path lastPathComponent] stringByDeletingPathExtension]);
    return self;
}

- (void)recorded_setFlipped:(BOOL)fFlipped
{
    Note("SetFlipped " + NameOf(self) + (fFlipped ? " 1" : " 0"));
    [self recorded_setFlipped:fFlipped];
}

- (void)recorded_drawInRect:(NSRect)target
                   fromRect:(NSRect)source
                  operation:(NSCompositingOperation)operation
                   fraction:(CGFloat)fraction
{
    char text[60];
    snprintf(text, sizeof text, " operation %d fraction %.3g", int(operation), fraction);
    Note("DrawImage " + NameOf(self) + " in" + Text(target) + " from" + Text(source) + text +
         ([self isFlipped] ? " flipped" : ""));
}

@end

@interface NSString (Recorded)
- (void)recorded_drawInRect:(NSRect)rect withAttributes:(NSDictionary*)attributes;
- (NSSize)recorded_sizeWithAttributes:(NSDictionary*)attributes;
@end

@implementation NSString (Recorded)

- (void)recorded_drawInRect:(NSRect)rect withAttributes:(NSDictionary*)attributes
{
    [lastAttributes release];
    lastAttributes = [attributes retain];
    Note("DrawText " + Text(self) + " in" + Text(rect));
}

- (NSSize)recorded_sizeWithAttributes:(NSDictionary*)attributes
{
    (void)attributes;
    Note("Measure " + Text(self));
    return TarvaneTests::RecordedDrawing::kTextSize;
}

@end

@interface NSBundle (Recorded)
+ (NSBundle*)recorded_bundleForClass:(Class)aClass;
- (NSString*)recorded_pathForResource:(NSString*)name ofType:(NSString*)type;
@end

@implementation NSBundle (Recorded)

+ (NSBundle*)recorded_bundleForClass:(Class)aClass
{
    Note("BundleOf " + Text(NSStringFromClass(aClass)));
    return [NSBundle mainBundle];
}

- (NSString*)recorded_pathForResource:(NSString*)name ofType:(NSString*)type
{
    Note("Resource " + Text(name) + "." + Text(type));
    if (lostResources.count(Text(name)))
        return nil;
    return [NSString stringWithFormat:@"/images/%@.%@", name, type];
}

@end

@interface NSFont (Recorded)
+ (NSFont*)recorded_fontWithName:(NSString*)name size:(CGFloat)dSize;
@end

@implementation NSFont (Recorded)

+ (NSFont*)recorded_fontWithName:(NSString*)name size:(CGFloat)dSize
{
    if (lostResources.count(Text(name)))
        return nil;
    const auto lent = lentFonts.find(Text(name));
    if (lent == lentFonts.end())
        return [self recorded_fontWithName:name size:dSize];
    return lent->second.dSize == dSize ? lent->second.font : nil;
}

@end

@interface NSGraphicsContext (Recorded)
+ (id)recorded_currentContext;
@end

@implementation NSGraphicsContext (Recorded)
+ (id)recorded_currentContext
{
    static RecordingContextObject* object = [[RecordingContextObject alloc] init];
    ++nContextsAsked;
    return object;
}
@end

namespace TarvaneTests
{

namespace
{

void ExchangeAll()
{
    const Replacement all[] = {
        {[NSImage class],
         @selector(initWithContentsOfFile:),
         @selector(recorded_initWithContentsOfFile:)},
        {[NSImage class], @selector(size), @selector(recorded_size)},
        {[NSImage class], @selector(setFlipped:), @selector(recorded_setFlipped:)},
        {[NSImage class],
         @selector(drawInRect:fromRect:operation:fraction:),
         @selector(recorded_drawInRect:fromRect:operation:fraction:)},
        {[NSString class],
         @selector(drawInRect:withAttributes:),
         @selector(recorded_drawInRect:withAttributes:)},
        {[NSString class], @selector(sizeWithAttributes:), @selector(recorded_sizeWithAttributes:)},
        {[NSBundle class],
         @selector(pathForResource:ofType:),
         @selector(recorded_pathForResource:ofType:)},
        {object_getClass([NSBundle class]), @selector(bundleForClass:),
         @selector(recorded_bundleForClass:)},
        {object_getClass([NSFont class]), @selector(fontWithName:size:),
         @selector(recorded_fontWithName:size:)},
        {object_getClass([NSGraphicsContext class]), @selector(currentContext),
         @selector(recorded_currentContext)},
    };
    for (const Replacement& replacement : all)
        replacement.Exchange();
}

} // namespace

RecordedDrawing::RecordedDrawing()
{
    ExchangeAll();
    ResetGraphicsCalls();
    nContextsAsked = 0;
    nDigits = 9;
    imageSize = kImageSize;
}

RecordedDrawing::~RecordedDrawing()
{
    ExchangeAll();
    lostResources.clear();
    lentFonts.clear();
    imageNames.clear();
    [lastAttributes release];
    lastAttributes = nil;
}

void RecordedDrawing::LoseResource(const std::string& strName) { lostResources.insert(strName); }

void RecordedDrawing::LendFont(const std::string& strName, CGFloat dSize, NSFont* font)
{
    lentFonts[strName] = {dSize, font};
}

void RecordedDrawing::SetImageSize(NSSize size) { imageSize = size; }

void RecordedDrawing::SetDigits(int n) { nDigits = n; }

int RecordedDrawing::ContextsAsked() const { return nContextsAsked; }

NSDictionary* RecordedDrawing::LastAttributes() const
{
    return [[lastAttributes retain] autorelease];
}

std::vector<std::string> CallsThatBegin(const std::vector<std::string>& words)
{
    std::vector<std::string> found;
    for (const std::string& strCall : GraphicsCalls())
        if (std::any_of(words.begin(), words.end(),
                        [&](const std::string& strWord)
                        { return strCall.compare(0, strWord.size(), strWord) == 0; }))
            found.push_back(strCall);
    return found;
}

} // namespace TarvaneTests
