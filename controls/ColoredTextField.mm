#import "controls/ColoredTextField.h"

#include "colours/ComponentsColors.h"

@implementation ColoredTextField

- (BOOL)becomeFirstResponder
{
    if (![super becomeFirstResponder])
        return NO;
    [self setSelectedColor];
    return YES;
}

- (void)textDidEndEditing:(NSNotification*)notification
{
    [super textDidEndEditing:notification];
    [self setSelectedColor];
}

- (void)setSelectedColor
{
    NSColor* background = gAppColours.FindNSColor(ccSelectedTextBackground);
    NSDictionary* attributes =
        [NSDictionary dictionaryWithObjectsAndKeys:background, NSBackgroundColorAttributeName, nil];
    NSTextView* editor = (NSTextView*)[[self window] fieldEditor:YES forObject:self];
    [editor setSelectedTextAttributes:attributes];
    [editor setInsertionPointColor:gAppColours.FindNSColor(ccLabelText)];
}

@end
