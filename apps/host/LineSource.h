// Lines that arrive on a file descriptor, in the main run loop.
#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace Tarvane
{

/// Main thread.
class ILineListener
{
  public:
    virtual ~ILineListener() = default;
    /// Without its line end.
    virtual void LineArrived(const std::string& strLine) = 0;
    /// Once; a last line without a line end is dropped.
    virtual void LinesEnded() = 0;
};

} // namespace Tarvane

/// Main thread. Lines are told while a menu is open, too.
@interface LineSource : NSObject
{
    NSFileHandle* m_file;
    Tarvane::ILineListener* m_pListener; ///< not owned; null when nobody listens any more
    std::string m_strPending;
    bool m_fEnded;
    bool m_fHeld;
}

/// Neither owns the listener nor closes the descriptor.
- (id)initWithDescriptor:(int)nFile listener:(Tarvane::ILineListener*)pListener;

/// Between the two nothing is told; what arrives is kept.
- (void)hold;
- (void)goOn;

/// Tells nothing any more. The listener may go.
- (void)close;

@end
