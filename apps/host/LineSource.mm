#import "apps/host/LineSource.h"

#import "apps/support/window/MainThread.h"

#include <array>
#include <cerrno>
#include <unistd.h>

@implementation LineSource

- (id)initWithDescriptor:(int)nFile listener:(Tarvane::ILineListener*)pListener
{
    self = [super init];
    if (self != nil)
    {
        m_pListener = pListener;
        m_file = [[NSFileHandle alloc] initWithFileDescriptor:nFile closeOnDealloc:NO];
        [[NSNotificationCenter defaultCenter] addObserver:self
                                                 selector:@selector(dataArrived:)
                                                     name:NSFileHandleDataAvailableNotification
                                                   object:m_file];
        [m_file waitForDataInBackgroundAndNotifyForModes:Tarvane::MainThreadModes()];
    }
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [m_file release];
    [super dealloc];
}

- (void)tellPending
{
    // Whoever is told may hold, close or release this object.
    [[self retain] autorelease];
    size_t nEnd = 0;
    while (!m_fHeld && m_pListener != nullptr &&
           (nEnd = m_strPending.find('\n')) != std::string::npos)
    {
        const std::string strLine = m_strPending.substr(0, nEnd);
        m_strPending.erase(0, nEnd + 1);
        m_pListener->LineArrived(strLine);
    }
    if (!m_fHeld && m_pListener != nullptr && m_fEnded)
    {
        Tarvane::ILineListener* pListener = m_pListener;
        m_pListener = nullptr;
        pListener->LinesEnded();
    }
}

- (void)dataArrived:(NSNotification*)notification
{
    (void)notification;
    std::array<char, 4096> bytes;
    const ssize_t nRead = ::read([m_file fileDescriptor], bytes.data(), bytes.size());
    if (nRead > 0)
    {
        m_strPending.append(bytes.data(), static_cast<size_t>(nRead));
    }
    else if (nRead == 0 || errno != EINTR)
    {
        m_fEnded = true;
    }
    if (!m_fEnded)
    {
        [m_file waitForDataInBackgroundAndNotifyForModes:Tarvane::MainThreadModes()];
    }
    [self tellPending];
}

- (void)hold
{
    m_fHeld = true;
}

- (void)goOn
{
    m_fHeld = false;
    // Not from inside the call that is being answered.
    [self performSelectorOnMainThread:@selector(tellPending) withObject:nil waitUntilDone:NO];
}

- (void)close
{
    m_pListener = nullptr;
    [[NSNotificationCenter defaultCenter] removeObserver:self];
}

@end
