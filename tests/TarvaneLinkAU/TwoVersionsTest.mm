// Two versions of the bundle in one host, the second one built with a suffix to all class names.
#import "tests/TarvaneLinkAU/LinkBundleFixture.h"

#include <AudioUnit/AUCocoaUIView.h>

#include <set>

namespace
{
NSBundle* OtherBundle()
{
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:TARVANE_OTHER_LINK_BUNDLE]];
}

// Of the view, of all below it, and of the cells of those that have one.
void CollectClasses(NSView* pView, std::set<Class>& classes)
{
    classes.insert([pView class]);
    if ([pView isKindOfClass:[NSControl class]])
        classes.insert([[(NSControl*)pView cell] class]);
    NSArray* pParts = [pView subviews];
    for (NSUInteger n = 0; n < [pParts count]; ++n)
        CollectClasses([pParts objectAtIndex:n], classes);
}

std::set<std::string> ClassesFrom(NSBundle* pBundle, NSView* pView)
{
    std::set<Class> classes;
    CollectClasses(pView, classes);
    std::set<std::string> names;
    for (Class pClass : classes)
    {
        if ([NSBundle bundleForClass:pClass] == pBundle)
            names.insert(Utf8(NSStringFromClass(pClass)));
    }
    return names;
}

TEST_F(LinkBundle, TwoVersionsLiveInOneHostEachWithItsOwnClasses)
{
    id pOtherFactory = [[[OtherBundle() principalClass] alloc] init];
    EXPECT_EQ(Utf8(NSStringFromClass([pOtherFactory class])), "TarvaneLink_CocoaViewFactory_other");
    PlayTracks(2);
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    NSView* pOther = [[pOtherFactory uiViewForAudioUnit:m_plugIn.Unit()
                                               withSize:NSMakeSize(9, 9)] retain];
    [pPool drain];

    const std::set<std::string> own = ClassesFrom(LoadedBundle(), m_pView);
    EXPECT_THAT(own, testing::IsSupersetOf({"TarvaneLink_CocoaView", "TKToggleSwitch",
                                            "TKPopUpButtonCell", "ColoredTextField"}));
    std::set<std::string> expected;
    for (const std::string& strName : own)
        expected.insert(strName + "_other");
    EXPECT_EQ(ClassesFrom(OtherBundle(), pOther), expected);

    EXPECT_THAT(ClassesFrom(OtherBundle(), m_pView), testing::IsEmpty());
    EXPECT_THAT(ClassesFrom(LoadedBundle(), pOther), testing::IsEmpty());
    [pOther release];
    [pOtherFactory release];
}
} // namespace
