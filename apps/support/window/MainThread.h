// Work for the main thread, in the order in which it was handed over.
#pragma once

#import <Foundation/Foundation.h>

#include <functional>

namespace Tarvane
{

/// Behind an interface, since the object system cannot describe a function's type.
class ICall
{
  public:
    virtual ~ICall() = default;
    virtual void Run() = 0;
};

} // namespace Tarvane

/// A call as an object, to be the target of selectors.
@interface MainThreadCall : NSObject
{
    Tarvane::ICall* m_pCall; ///< owned
}
/// Takes the call over.
- (id)initWithCall:(Tarvane::ICall*)pCall;
- (void)run;
/// For timers and notifications.
- (void)run:(id)sender;
@end

namespace Tarvane
{

/// Autoreleased.
MainThreadCall* MakeCall(std::function<void()> fnCall);

/// Any thread. Waits for nothing; the call runs in the main run loop, behind everything that has
/// been handed to it before, by whomever.
void CallOnMainThread(std::function<void()> fnCall);

/// Main thread. Runs what has been handed to it already, and what that hands over in turn.
void RunWhatWaits();

/// In both of which the main run loop is to hear from outside: it waits for events, or has a menu
/// open. Autoreleased.
NSArray* MainThreadModes();

} // namespace Tarvane
