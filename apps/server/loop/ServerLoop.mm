#include "apps/server/loop/ServerLoop.h"

#include "apps/server/loop/EndSignals.h"

#import <Foundation/Foundation.h>
#include <TarvanePlatform/Application.h>

namespace Tarvane::Server
{
namespace
{

constexpr double kForEver = 1e9; // seconds

} // namespace

CServerLoop::CServerLoop() : m_pPool([[NSAutoreleasePool alloc] init]) {}

CServerLoop::~CServerLoop() { [static_cast<NSAutoreleasePool*>(m_pPool) drain]; }

void CServerLoop::RunUntilEnd(const CEndSignals& signals)
{
    // Its only purpose is to end a pass of the loop when a signal has come.
    NSFileHandle* handle = [[NSFileHandle alloc] initWithFileDescriptor:signals.Descriptor()
                                                         closeOnDealloc:NO];
    [handle waitForDataInBackgroundAndNotify];
    while (!signals.HasCome())
        TarvaneHandleEvents(kForEver);
    [handle release];
}

} // namespace Tarvane::Server
