#import "controls/ColoredTextField.h"

#include "colours/ComponentsColors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

@interface UnwillingTextField : ColoredTextField
@end

@implementation UnwillingTextField
- (BOOL)acceptsFirstResponder
{
    return NO;
}
@end

// A window that tells what its field editor is asked for.
@interface EditorWindow : NSWindow
{
  @public
    std::vector<std::pair<bool, id>> m_asked; // whether to make one, and for whom
}
@end

@implementation EditorWindow
- (NSText*)fieldEditor:(BOOL)fCreate forObject:(id)object
{
    m_asked.emplace_back(fCreate, object);
    return [super fieldEditor:fCreate forObject:object];
}
@end

namespace
{

class TextField : public testing::Test
{
  protected:
    TextField() : m_pool([[NSAutoreleasePool alloc] init])
    {
        AppCreateDefaultColoursDesigner();
        m_window = [[EditorWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 60)
                                                   styleMask:NSTitledWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
        [m_window setReleasedWhenClosed:NO];
        m_field =
            [[[ColoredTextField alloc] initWithFrame:NSMakeRect(10, 10, 100, 22)] autorelease];
        [m_field setEditable:YES];
        [m_field setStringValue:@"Take 1"];
        [[m_window contentView] addSubview:m_field];
    }

    ~TextField() override
    {
        [m_window close];
        [m_window release];
        gAppColours.Clear();
        [m_pool drain];
    }

    NSTextView* Editor() { return (NSTextView*)[m_window fieldEditor:YES forObject:m_field]; }

    void SpoilColours()
    {
        [Editor() setInsertionPointColor:[NSColor greenColor]];
        [Editor() setSelectedTextAttributes:[NSDictionary dictionary]];
    }

    void ExpectPaletteColours()
    {
        NSDictionary* attributes = [Editor() selectedTextAttributes];
        EXPECT_EQ([attributes count], 1u);
        EXPECT_TRUE([[attributes objectForKey:NSBackgroundColorAttributeName]
            isEqual:gAppColours.FindNSColor(ccSelectedTextBackground)]);
        EXPECT_TRUE([[Editor() insertionPointColor] isEqual:gAppColours.FindNSColor(ccLabelText)]);
    }

    NSAutoreleasePool* m_pool;
    EditorWindow* m_window;
    ColoredTextField* m_field;
};

} // namespace

TEST_F(TextField, TakesThePaletteColoursWithTheFocus)
{
    SpoilColours();
    EXPECT_TRUE([m_window makeFirstResponder:m_field]);
    ExpectPaletteColours();
}

TEST_F(TextField, TakesThePaletteColoursAgainWhenEditingEnds)
{
    [m_window makeFirstResponder:m_field];
    SpoilColours();
    [m_window makeFirstResponder:nil];
    ExpectPaletteColours();
}

TEST_F(TextField, HasTheEditorMadeForItselfIfThereIsNone)
{
    ASSERT_TRUE([m_window fieldEditor:NO forObject:nil] == nil);
    m_window->m_asked.clear();
    [m_field setSelectedColor];
    EXPECT_THAT(m_window->m_asked, testing::ElementsAre(testing::Pair(true, m_field)));
    EXPECT_TRUE([m_window fieldEditor:NO forObject:nil] != nil);
    ExpectPaletteColours();
}

TEST_F(TextField, ThatWillNotTakeTheFocusLeavesTheEditorAlone)
{
    UnwillingTextField* unwilling =
        [[[UnwillingTextField alloc] initWithFrame:NSMakeRect(10, 35, 100, 22)] autorelease];
    [unwilling setEditable:NO];
    [unwilling setSelectable:NO];
    [[m_window contentView] addSubview:unwilling];
    SpoilColours();
    EXPECT_FALSE([unwilling becomeFirstResponder]);
    EXPECT_TRUE([[Editor() insertionPointColor] isEqual:[NSColor greenColor]]);
}

TEST_F(TextField, WithoutAWindowChangesNothing)
{
    ColoredTextField* loose =
        [[[ColoredTextField alloc] initWithFrame:NSMakeRect(0, 0, 100, 22)] autorelease];
    SpoilColours();
    [loose setSelectedColor];
    EXPECT_TRUE([[Editor() insertionPointColor] isEqual:[NSColor greenColor]]);
}
