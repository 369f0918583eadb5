#import "TarvaneLinkAU/TarvaneLinkViewFactory.h"

#import "TarvaneLinkAU/TarvaneLinkView.h"
#include "colours/ComponentsColors.h"

@implementation TarvaneLink_CocoaViewFactory

- (unsigned int)interfaceVersion
{
    return 0;
}

- (NSString*)description
{
    return @" Tarvane Link";
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)pUnit withSize:(NSSize)sizePreferred
{
    (void)sizePreferred;
    // Looks in the bundle of the owner's class, not in the host's.
    if (![NSBundle loadNibNamed:@"TarvaneLinkCocoaUIView" owner:self])
    {
        NSLog(@"Unable to load nib for view.");
        return nil;
    }
    // Before anything is drawn.
    AppCreateDefaultColoursDesigner();
    [uiFreshlyLoadedView setAU:pUnit];

    NSView* pView = uiFreshlyLoadedView;
    uiFreshlyLoadedView = nil;
    return [pView autorelease];
}

@end
