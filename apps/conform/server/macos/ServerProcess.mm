#include "apps/conform/server/ServerProcess.h"

#include "apps/conform/shared/Rule.h"

#import <AppKit/AppKit.h>
#include <libproc.h>

namespace Tarvane::Conform
{

std::string ServerAddress() { return "an application of the signature 'TkNe'"; }

std::string CarriersError() { return ""; }

pid_t ServerProcess()
{
    pid_t process = -1;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSArray* applications = [[NSWorkspace sharedWorkspace] runningApplications];
    for (NSUInteger n = 0; n < [applications count]; ++n)
    {
        NSRunningApplication* application = [applications objectAtIndex:n];
        NSBundle* bundle = [NSBundle bundleWithURL:[application bundleURL]];
        if ([[bundle objectForInfoDictionaryKey:@"CFBundleSignature"] isEqual:@"TkNe"])
            process = [application processIdentifier];
    }
    [pool drain];
    if (process == -1)
        throw CNotExaminable("no application that runs has the signature 'TkNe'");
    return process;
}

double SecondsSinceStart(pid_t process)
{
    proc_bsdinfo info{};
    if (proc_pidinfo(process, PROC_PIDTBSDINFO, 0, &info, sizeof info) != sizeof info)
        throw CNotExaminable("the server's process cannot be looked at");
    const double dStart = static_cast<double>(info.pbi_start_tvsec) +
                          static_cast<double>(info.pbi_start_tvusec) / 1e6;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceEpoch).count() - dStart;
}

int EventsToItself(pid_t, std::chrono::milliseconds)
{
    throw CNotExaminable("this system shows the events of a process to no other");
}

} // namespace Tarvane::Conform
