#include "apps/server/loop/LoopWatch.h"

#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <utility>

// What the run loop and the notification centre know: it outlives the C++ object by a call that is
// under way.
@interface TarvaneLoopTarget : NSObject
{
  @public
    void* m_pCall; // std::function<void()>, owned; null once stopped
    NSFileHandle* m_handle;
}
- (void)watchFile:(int)nFile;
- (void)stop;
@end

@implementation TarvaneLoopTarget

- (void)dealloc
{
    [m_handle release];
    [super dealloc];
}

- (void)watchFile:(int)nFile
{
    // Of its own: the notification that is under way keeps the handle beyond this object.
    m_handle = [[NSFileHandle alloc] initWithFileDescriptor:fcntl(nFile, F_DUPFD_CLOEXEC, 0)
                                             closeOnDealloc:YES];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(dataAvailable:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:m_handle];
    [m_handle waitForDataInBackgroundAndNotify];
}

- (void)dataAvailable:(NSNotification*)notification
{
    (void)notification;
    [self retain];
    // What it calls may take it away.
    if (m_pCall)
    {
        const std::function<void()> call = *static_cast<std::function<void()>*>(m_pCall);
        call();
    }
    if (m_pCall)
        [m_handle waitForDataInBackgroundAndNotify];
    [self release];
}

- (void)stop
{
    delete static_cast<std::function<void()>*>(m_pCall);
    m_pCall = nullptr;
    [[NSNotificationCenter defaultCenter] removeObserver:self];
}

@end

namespace Tarvane::Server
{

CReadWatch::CReadWatch(int nFile, std::function<void()> readable)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TarvaneLoopTarget* target = [[TarvaneLoopTarget alloc] init];
    target->m_pCall = new std::function<void()>(std::move(readable));
    [target watchFile:nFile];
    m_pTarget = target;
    [pool drain];
}

CReadWatch::~CReadWatch()
{
    TarvaneLoopTarget* target = static_cast<TarvaneLoopTarget*>(m_pTarget);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [target stop];
    [target release];
    [pool drain];
}

} // namespace Tarvane::Server
