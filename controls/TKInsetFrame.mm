#import "controls/TKInsetFrame.h"

#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"
#import "controls/GraphicUtils.h"

@implementation TKInsetFrame

- (void)fill:(CComponentCode)colour rect:(NSRect)rect radius:(float)fRadius
{
    [GraphicUtils FillRoundRect:CurrentContext()
                          Color:colour
                     Background:CComponentCode(0, 0)
                           Rect:rect
                         Radius:fRadius
                  FillDirection:kFillTopToBottom
                        Flipped:[self isFlipped]];
}

- (void)drawRect:(NSRect)dirty
{
    (void)dirty;
    const NSRect bounds = [self bounds];
    [self fill:ccTransportBtnBorderUp rect:bounds radius:gfDefaultRadius];
    [self fill:ccTransportBtnFaceDown
          rect:NSInsetRect(bounds, 1.0, 1.0)
        radius:gfDefaultRadius - 1.0F];
}

@end
