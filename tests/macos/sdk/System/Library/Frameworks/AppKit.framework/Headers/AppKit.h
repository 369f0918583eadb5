// As far as the product and the programs go. What macOS has marked as out of date is marked here
// too.
#pragma once

#import <Foundation/Foundation.h>

#define IBOutlet __attribute__((iboutlet))
#define IBAction void)__attribute__((ibaction)
#define OUT_OF_DATE __attribute__((deprecated))

@class NSWindow, NSView, NSMenu, NSColor, NSFont, NSImage, NSEvent, NSText, NSCursor, NSScreen;
@class NSBezierPath, NSGraphicsContext, NSMenuItem, NSBitmapImageRep;

typedef NSString* NSAttributedStringKey;
typedef NSString* NSColorSpaceName;
extern "C" NSAttributedStringKey const NSFontAttributeName;
extern "C" NSAttributedStringKey const NSParagraphStyleAttributeName;
extern "C" NSAttributedStringKey const NSForegroundColorAttributeName;
extern "C" NSAttributedStringKey const NSBackgroundColorAttributeName;
extern "C" NSColorSpaceName const NSCalibratedRGBColorSpace;

typedef unsigned long long NSEventMask;
enum : NSEventMask
{
    NSEventMaskAny = ~0ULL
};
typedef NSUInteger NSEventModifierFlags;
typedef enum NSEventType : NSUInteger NSEventType;
enum NSEventType : NSUInteger
{
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeLeftMouseDragged = 6,
    NSEventTypeKeyDown = 10,
    NSEventTypeApplicationDefined = 15,
    NSEventTypePeriodic = 16
};
static const NSEventType NSLeftMouseDown OUT_OF_DATE = NSEventTypeLeftMouseDown;
static const NSEventType NSLeftMouseUp OUT_OF_DATE = NSEventTypeLeftMouseUp;
static const NSEventType NSLeftMouseDragged OUT_OF_DATE = NSEventTypeLeftMouseDragged;
static const NSEventType NSKeyDown OUT_OF_DATE = NSEventTypeKeyDown;
static const NSEventType NSApplicationDefined OUT_OF_DATE = NSEventTypeApplicationDefined;
static const NSEventType NSPeriodic OUT_OF_DATE = NSEventTypePeriodic;

typedef NSUInteger NSWindowStyleMask;
static const NSWindowStyleMask NSBorderlessWindowMask OUT_OF_DATE = 0;
static const NSWindowStyleMask NSTitledWindowMask OUT_OF_DATE = 1;
static const NSWindowStyleMask NSClosableWindowMask OUT_OF_DATE = 2;
static const NSWindowStyleMask NSMiniaturizableWindowMask OUT_OF_DATE = 4;
static const NSWindowStyleMask NSResizableWindowMask OUT_OF_DATE = 8;

typedef enum NSBackingStoreType : NSUInteger NSBackingStoreType;
enum NSBackingStoreType : NSUInteger
{
    NSBackingStoreBuffered = 2
};

typedef enum NSControlSize : NSUInteger NSControlSize;
enum NSControlSize : NSUInteger
{
    NSControlSizeRegular,
    NSControlSizeSmall,
    NSControlSizeMini,
    NSControlSizeLarge
};
static const NSControlSize NSRegularControlSize OUT_OF_DATE = NSControlSizeRegular;
static const NSControlSize NSSmallControlSize OUT_OF_DATE = NSControlSizeSmall;
static const NSControlSize NSMiniControlSize OUT_OF_DATE = NSControlSizeMini;

/// Centre and right change places between the processors.
typedef enum NSTextAlignment : NSInteger NSTextAlignment;
enum NSTextAlignment : NSInteger
{
    NSTextAlignmentLeft = 0,
#ifdef __arm64__
    NSTextAlignmentCenter = 1,
    NSTextAlignmentRight = 2,
#else
    NSTextAlignmentRight = 1,
    NSTextAlignmentCenter = 2,
#endif
    NSTextAlignmentJustified = 3,
    NSTextAlignmentNatural = 4
};
static const NSTextAlignment NSLeftTextAlignment OUT_OF_DATE = NSTextAlignmentLeft;
static const NSTextAlignment NSRightTextAlignment OUT_OF_DATE = NSTextAlignmentRight;
static const NSTextAlignment NSCenterTextAlignment OUT_OF_DATE = NSTextAlignmentCenter;

typedef enum NSLineBreakMode : NSUInteger NSLineBreakMode;
enum NSLineBreakMode : NSUInteger
{
    NSLineBreakByWordWrapping,
    NSLineBreakByCharWrapping,
    NSLineBreakByClipping,
    NSLineBreakByTruncatingHead,
    NSLineBreakByTruncatingTail,
    NSLineBreakByTruncatingMiddle
};
/// A set of bits and so a number in C++, like window styles, masks and modifier flags.
typedef NSInteger NSStringDrawingOptions;
typedef enum NSCompositingOperation : NSUInteger NSCompositingOperation;
enum NSCompositingOperation : NSUInteger
{
    NSCompositingOperationCopy = 1,
    NSCompositingOperationSourceOver = 2
};
static const NSCompositingOperation NSCompositeSourceOver OUT_OF_DATE =
    NSCompositingOperationSourceOver;
typedef enum NSCellImagePosition : NSUInteger NSCellImagePosition;
enum NSCellImagePosition : NSUInteger
{
    NSNoImage = 0,
    NSImageOnly = 1,
    NSImageLeft = 2,
    NSImageRight = 3
};
typedef enum NSBitmapImageFileType : NSUInteger NSBitmapImageFileType;
enum NSBitmapImageFileType : NSUInteger
{
    NSBitmapImageFileTypePNG = 4
};
static const NSBitmapImageFileType NSPNGFileType OUT_OF_DATE = NSBitmapImageFileTypePNG;
typedef enum NSApplicationActivationPolicy : NSInteger NSApplicationActivationPolicy;
enum NSApplicationActivationPolicy : NSInteger
{
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited
};
typedef NSInteger NSControlStateValue;

extern "C"
{
    extern id NSApp;
    extern NSNotificationName const NSWindowWillCloseNotification;
    void NSRectFill(NSRect);
    void NSFrameRect(NSRect);
    NSInteger NSRunAlertPanel(NSString* title, NSString* format, NSString* button,
                              NSString* alternate, NSString* other, ...) OUT_OF_DATE;
}

@interface NSResponder : NSObject <NSCoding>
- (BOOL)acceptsFirstResponder;
- (BOOL)becomeFirstResponder;
- (BOOL)resignFirstResponder;
- (void)mouseDown:(NSEvent*)event;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseDragged:(NSEvent*)event;
- (void)keyDown:(NSEvent*)event;
@end

extern "C" NSRunLoopMode const NSEventTrackingRunLoopMode;

@interface NSApplication : NSResponder
+ (NSApplication*)sharedApplication;
- (void)run;
- (void)stop:(id)sender;
- (void)terminate:(id)sender;
- (void)finishLaunching;
- (NSEvent*)currentEvent;
- (NSEvent*)nextEventMatchingMask:(NSEventMask)mask
                        untilDate:(NSDate*)date
                           inMode:(NSRunLoopMode)mode
                          dequeue:(BOOL)dequeue;
- (void)sendEvent:(NSEvent*)event;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)atStart;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)setApplicationIconImage:(NSImage*)image;
- (NSMenu*)mainMenu;
- (void)setMainMenu:(NSMenu*)menu;
- (void)setDelegate:(id)delegate;
- (NSArray*)windows;
- (NSWindow*)keyWindow;
@end

@interface NSEvent : NSObject <NSCopying>
- (NSEventType)type;
- (NSEventModifierFlags)modifierFlags;
- (NSPoint)locationInWindow;
- (NSInteger)clickCount;
- (NSTimeInterval)timestamp;
- (NSWindow*)window;
- (NSInteger)windowNumber;
- (NSString*)characters;
- (NSString*)charactersIgnoringModifiers;
- (unsigned short)keyCode;
+ (NSEvent*)otherEventWithType:(NSEventType)type
                      location:(NSPoint)location
                 modifierFlags:(NSEventModifierFlags)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)window
                       context:(NSGraphicsContext*)context
                       subtype:(short)subtype
                         data1:(NSInteger)data1
                         data2:(NSInteger)data2;
+ (NSEvent*)mouseEventWithType:(NSEventType)type
                      location:(NSPoint)location
                 modifierFlags:(NSEventModifierFlags)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)window
                       context:(NSGraphicsContext*)context
                   eventNumber:(NSInteger)number
                    clickCount:(NSInteger)count
                      pressure:(float)pressure;
@end

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frame;
- (instancetype)initWithCoder:(NSCoder*)coder;
- (NSRect)frame;
- (NSRect)bounds;
- (void)setFrame:(NSRect)frame;
- (void)setFrameSize:(NSSize)size;
- (void)setFrameOrigin:(NSPoint)origin;
- (BOOL)isFlipped;
- (BOOL)isOpaque;
- (NSWindow*)window;
- (NSView*)superview;
- (NSArray*)subviews;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (void)setNeedsDisplay:(BOOL)flag;
- (void)setNeedsDisplayInRect:(NSRect)rect;
- (void)display;
- (void)drawRect:(NSRect)rect;
- (NSView*)hitTest:(NSPoint)point;
- (id)viewWithTag:(NSInteger)tag;
- (NSInteger)tag;
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view;
- (NSPoint)convertPoint:(NSPoint)point toView:(NSView*)view;
- (NSRect)convertRect:(NSRect)rect toView:(NSView*)view;
- (NSRect)convertRect:(NSRect)rect fromView:(NSView*)view;
- (NSRect)visibleRect;
- (void)addCursorRect:(NSRect)rect cursor:(NSCursor*)cursor;
- (void)scrollPoint:(NSPoint)point;
- (void)setToolTip:(NSString*)toolTip;
- (NSString*)toolTip;
- (void)lockFocus OUT_OF_DATE;
- (void)unlockFocus OUT_OF_DATE;
- (void)setAutoresizingMask:(NSUInteger)mask;
- (void)setHidden:(BOOL)flag;
- (BOOL)isHidden;
- (void)viewWillMoveToWindow:(NSWindow*)window;
- (void)viewDidMoveToWindow;
- (NSBitmapImageRep*)bitmapImageRepForCachingDisplayInRect:(NSRect)rect;
- (void)cacheDisplayInRect:(NSRect)rect toBitmapImageRep:(NSBitmapImageRep*)image;
@end

@interface NSCell : NSObject <NSCopying, NSCoding>
- (instancetype)initTextCell:(NSString*)text;
- (instancetype)initImageCell:(NSImage*)image;
- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view;
- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view;
- (BOOL)trackMouse:(NSEvent*)event
            inRect:(NSRect)frame
            ofView:(NSView*)view
      untilMouseUp:(BOOL)flag;
- (NSControlSize)controlSize;
- (void)setControlSize:(NSControlSize)size;
- (BOOL)isEnabled;
- (void)setEnabled:(BOOL)flag;
- (BOOL)isHighlighted;
- (void)setHighlighted:(BOOL)flag;
- (BOOL)showsFirstResponder;
- (void)setShowsFirstResponder:(BOOL)flag;
- (void)setLineBreakMode:(NSLineBreakMode)mode;
- (NSControlStateValue)state;
- (void)setState:(NSControlStateValue)state;
- (NSString*)stringValue;
- (void)setStringValue:(NSString*)text;
- (NSString*)title;
- (void)setTitle:(NSString*)title;
- (void)setImage:(NSImage*)image;
- (NSImage*)image;
- (NSView*)controlView;
- (void)setControlView:(NSView*)view;
- (void)setFont:(NSFont*)font;
- (NSFont*)font;
- (SEL)action;
- (void)setAction:(SEL)action;
- (id)target;
- (void)setTarget:(id)target;
- (NSAttributedString*)attributedStringValue;
@end
@interface NSActionCell : NSCell
@end
@interface NSTextFieldCell : NSActionCell
- (NSColor*)textColor;
- (void)setTextColor:(NSColor*)colour;
@end
@interface NSButtonCell : NSActionCell
- (NSCellImagePosition)imagePosition;
- (void)setImagePosition:(NSCellImagePosition)position;
- (NSRect)drawTitle:(NSAttributedString*)title withFrame:(NSRect)frame inView:(NSView*)view;
- (void)drawBezelWithFrame:(NSRect)frame inView:(NSView*)view;
@end
@interface NSMenuItemCell : NSButtonCell
@end
@interface NSPopUpButtonCell : NSMenuItemCell
- (instancetype)initTextCell:(NSString*)text pullsDown:(BOOL)pullsDown;
- (NSMenuItem*)selectedItem;
- (NSInteger)indexOfSelectedItem;
- (void)addItemWithTitle:(NSString*)title;
- (void)addItemsWithTitles:(NSArray*)titles;
- (void)removeAllItems;
- (NSInteger)numberOfItems;
- (NSMenuItem*)itemAtIndex:(NSInteger)index;
- (void)selectItemAtIndex:(NSInteger)index;
- (NSMenu*)menu;
- (void)setMenu:(NSMenu*)menu;
- (void)attachPopUpWithFrame:(NSRect)frame inView:(NSView*)view;
- (void)dismissPopUp;
- (void)performClickWithFrame:(NSRect)frame inView:(NSView*)view;
- (void)synchronizeTitleAndSelectedItem;
@end

@interface NSControl : NSView
- (id)cell;
- (void)setCell:(NSCell*)cell;
- (id)target;
- (void)setTarget:(id)target;
- (SEL)action;
- (void)setAction:(SEL)action;
- (BOOL)sendAction:(SEL)action to:(id)target;
- (BOOL)isEnabled;
- (void)setEnabled:(BOOL)flag;
- (NSString*)stringValue;
- (void)setStringValue:(NSString*)text;
- (double)doubleValue;
- (void)setFont:(NSFont*)font;
- (NSFont*)font;
- (void)setAlignment:(NSTextAlignment)alignment;
- (void)setTag:(NSInteger)tag;
- (NSText*)currentEditor;
- (void)performClick:(id)sender;
@end
@interface NSTextField : NSControl
- (NSColor*)textColor;
- (void)setTextColor:(NSColor*)colour;
- (void)setBackgroundColor:(NSColor*)colour;
- (void)setDrawsBackground:(BOOL)flag;
- (void)setEditable:(BOOL)flag;
- (void)setSelectable:(BOOL)flag;
- (void)setBezeled:(BOOL)flag;
- (void)setBordered:(BOOL)flag;
- (void)selectText:(id)sender;
- (void)textDidEndEditing:(NSNotification*)notification;
@end
@interface NSButton : NSControl
- (NSControlStateValue)state;
- (void)setState:(NSControlStateValue)state;
- (void)setTitle:(NSString*)title;
@end
@interface NSPopUpButton : NSButton
- (instancetype)initWithFrame:(NSRect)frame pullsDown:(BOOL)pullsDown;
- (NSMenu*)menu;
- (void)setMenu:(NSMenu*)menu;
- (void)addItemWithTitle:(NSString*)title;
- (void)addItemsWithTitles:(NSArray*)titles;
- (void)removeAllItems;
- (NSInteger)numberOfItems;
- (NSMenuItem*)itemAtIndex:(NSInteger)index;
- (NSMenuItem*)selectedItem;
- (NSInteger)indexOfSelectedItem;
- (void)selectItemAtIndex:(NSInteger)index;
- (NSString*)titleOfSelectedItem;
- (NSString*)itemTitleAtIndex:(NSInteger)index;
- (NSArray*)itemTitles;
- (void)synchronizeTitleAndSelectedItem;
@end
@interface NSSlider : NSControl
@end

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end
@interface NSMenu : NSObject <NSCopying>
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
- (NSMenuItem*)addItemWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
- (void)setSubmenu:(NSMenu*)menu forItem:(NSMenuItem*)item;
- (NSInteger)numberOfItems;
- (NSMenuItem*)itemAtIndex:(NSInteger)index;
- (void)removeAllItems;
- (void)setDelegate:(id<NSMenuDelegate>)delegate;
- (id<NSMenuDelegate>)delegate;
- (void)setAutoenablesItems:(BOOL)flag;
@end
@interface NSMenuItem : NSObject <NSCopying>
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
- (NSString*)title;
- (void)setTitle:(NSString*)title;
- (void)setTarget:(id)target;
- (void)setEnabled:(BOOL)flag;
- (void)setSubmenu:(NSMenu*)menu;
@end

@protocol NSWindowDelegate <NSObject>
@optional
- (void)windowWillClose:(NSNotification*)notification;
@end
@interface NSWindow : NSResponder
- (void)setContentMinSize:(NSSize)size;
- (void)setContentMaxSize:(NSSize)size;
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)flag;
+ (NSRect)contentRectForFrameRect:(NSRect)rect styleMask:(NSWindowStyleMask)style;
+ (NSRect)frameRectForContentRect:(NSRect)rect styleMask:(NSWindowStyleMask)style;
- (NSRect)frame;
- (void)setFrame:(NSRect)frame display:(BOOL)flag;
- (void)setContentSize:(NSSize)size;
- (void)setFrameOrigin:(NSPoint)point;
- (id)contentView;
- (void)setContentView:(NSView*)view;
- (void)setTitle:(NSString*)title;
- (NSString*)title;
- (void)setDelegate:(id<NSWindowDelegate>)delegate;
- (void)setBackgroundColor:(NSColor*)colour;
- (void)setReleasedWhenClosed:(BOOL)flag;
- (void)setAcceptsMouseMovedEvents:(BOOL)flag;
- (void)setInitialFirstResponder:(NSView*)view;
- (void)makeKeyAndOrderFront:(id)sender;
- (void)orderFront:(id)sender;
- (void)orderOut:(id)sender;
- (void)close;
- (void)center;
- (void)display;
- (void)setMinSize:(NSSize)size;
- (void)setMaxSize:(NSSize)size;
- (BOOL)isVisible;
- (BOOL)isKeyWindow;
- (BOOL)makeFirstResponder:(NSResponder*)responder;
- (NSResponder*)firstResponder;
- (NSText*)fieldEditor:(BOOL)create forObject:(id)object;
- (void)invalidateCursorRectsForView:(NSView*)view;
- (void)disableCursorRects;
- (void)enableCursorRects;
- (NSInteger)windowNumber;
- (void)sendEvent:(NSEvent*)event;
- (NSScreen*)screen;
@end
@interface NSScreen : NSObject
+ (NSScreen*)mainScreen;
- (NSRect)frame;
- (NSRect)visibleFrame;
@end
@interface NSScrollView : NSView
- (void)setHasVerticalScroller:(BOOL)flag;
- (void)setHasHorizontalScroller:(BOOL)flag;
- (void)setAutohidesScrollers:(BOOL)flag;
- (void)setBackgroundColor:(NSColor*)colour;
- (void)setDrawsBackground:(BOOL)flag;
- (void)setDocumentView:(NSView*)view;
@end
@interface NSScroller : NSControl
+ (CGFloat)scrollerWidth OUT_OF_DATE;
@end

@interface NSText : NSView
- (void)setSelectedRange:(NSRange)range;
- (NSRange)selectedRange;
- (NSString*)string;
@end
@interface NSTextView : NSText
- (void)setSelectedTextAttributes:(NSDictionary*)attributes;
- (void)setInsertionPointColor:(NSColor*)colour;
@end

@interface NSColor : NSObject <NSCopying, NSCoding>
+ (NSColor*)colorWithCalibratedRed:(CGFloat)red
                             green:(CGFloat)green
                              blue:(CGFloat)blue
                             alpha:(CGFloat)alpha;
+ (NSColor*)colorWithDeviceRed:(CGFloat)red
                         green:(CGFloat)green
                          blue:(CGFloat)blue
                         alpha:(CGFloat)alpha;
+ (NSColor*)colorWithCalibratedWhite:(CGFloat)white alpha:(CGFloat)alpha;
+ (NSColor*)colorWithDeviceWhite:(CGFloat)white alpha:(CGFloat)alpha;
+ (NSColor*)blackColor;
+ (NSColor*)whiteColor;
+ (NSColor*)clearColor;
- (NSColor*)colorUsingColorSpaceName:(NSColorSpaceName)name;
- (CGFloat)redComponent;
- (CGFloat)greenComponent;
- (CGFloat)blueComponent;
- (void)set;
- (void)setFill;
- (void)setStroke;
@end
@interface NSFont : NSObject <NSCopying, NSCoding>
+ (NSFont*)fontWithName:(NSString*)name size:(CGFloat)size;
+ (NSFont*)systemFontOfSize:(CGFloat)size;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
- (CGFloat)ascender;
- (CGFloat)descender;
- (CGFloat)pointSize;
@end
@interface NSParagraphStyle : NSObject <NSCopying, NSCoding>
@end
@interface NSMutableParagraphStyle : NSParagraphStyle
- (void)setAlignment:(NSTextAlignment)alignment;
- (void)setLineBreakMode:(NSLineBreakMode)mode;
@end
@interface NSAttributedString : NSObject <NSCopying, NSCoding>
- (instancetype)initWithString:(NSString*)string;
- (instancetype)initWithString:(NSString*)string attributes:(NSDictionary*)attributes;
- (NSString*)string;
- (NSUInteger)length;
@end
@interface NSAttributedString (NSDrawing)
- (void)drawInRect:(NSRect)rect;
- (NSSize)size;
- (void)drawWithRect:(NSRect)rect options:(NSStringDrawingOptions)options;
@end
@interface NSString (NSDrawing)
- (NSSize)sizeWithAttributes:(NSDictionary*)attributes;
- (void)drawInRect:(NSRect)rect withAttributes:(NSDictionary*)attributes;
- (void)drawWithRect:(NSRect)rect
             options:(NSStringDrawingOptions)options
          attributes:(NSDictionary*)attributes;
@end

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext*)currentContext;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
- (void*)graphicsPort OUT_OF_DATE;
- (BOOL)isFlipped;
@end
@interface NSBezierPath : NSObject <NSCopying>
+ (NSBezierPath*)bezierPath;
+ (NSBezierPath*)bezierPathWithRect:(NSRect)rect;
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)x yRadius:(CGFloat)y;
- (void)moveToPoint:(NSPoint)point;
- (void)lineToPoint:(NSPoint)point;
- (void)closePath;
- (void)setLineWidth:(CGFloat)width;
- (void)addClip;
- (void)fill;
- (void)stroke;
@end
@interface NSImage : NSObject <NSCopying, NSCoding>
- (instancetype)initWithContentsOfFile:(NSString*)path;
- (instancetype)initByReferencingFile:(NSString*)path;
- (instancetype)initWithSize:(NSSize)size;
- (instancetype)initWithData:(NSData*)data;
- (NSSize)size;
- (BOOL)isValid;
- (BOOL)isFlipped OUT_OF_DATE;
- (void)setFlipped:(BOOL)flag OUT_OF_DATE;
- (void)addRepresentation:(id)representation;
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)from
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction;
@end
@interface NSBitmapImageRep : NSObject
- (instancetype)initWithFocusedViewRect:(NSRect)rect OUT_OF_DATE;
- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties;
@end
@interface NSCursor : NSObject <NSCoding>
- (instancetype)initWithImage:(NSImage*)image hotSpot:(NSPoint)point;
+ (NSCursor*)arrowCursor;
+ (NSCursor*)resizeLeftCursor;
+ (NSCursor*)resizeRightCursor;
+ (NSCursor*)resizeLeftRightCursor;
+ (NSCursor*)resizeUpCursor;
+ (NSCursor*)resizeDownCursor;
+ (NSCursor*)resizeUpDownCursor;
+ (NSCursor*)openHandCursor;
+ (void)pop;
- (void)push;
- (void)set;
@end

@interface NSBundle (NSNibLoading)
+ (BOOL)loadNibNamed:(NSString*)name owner:(id)owner OUT_OF_DATE;
- (BOOL)loadNibNamed:(NSString*)name owner:(id)owner topLevelObjects:(NSArray**)objects;
@end

@interface NSRunningApplication : NSObject
- (NSURL*)bundleURL;
- (int)processIdentifier;
@end
@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
- (NSArray*)runningApplications;
@end
