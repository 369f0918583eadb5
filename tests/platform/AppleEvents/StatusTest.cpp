#include "platform/gnustep/AppleEvents/Status.h"

#include <AE/AEErrors.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

using namespace AppleEvents;

namespace
{

OSErr StatusFor(const char* szShortName)
{
    return StatusForErrorName(std::string("org.freedesktop.DBus.Error.") + szShortName);
}

} // namespace

TEST(Status, NobodyToSendToIsProcNotFound)
{
    EXPECT_EQ(procNotFound, StatusFor("NameHasNoOwner"));
    EXPECT_EQ(procNotFound, StatusFor("ServiceUnknown"));
}

TEST(Status, NobodyLeftToReplyIsConnectionInvalid)
{
    EXPECT_EQ(connectionInvalid, StatusFor("NoReply"));
    EXPECT_EQ(connectionInvalid, StatusFor("Disconnected"));
}

TEST(Status, OwnerThatDoesNotSpeakAppleEventsHandlesNone)
{
    EXPECT_EQ(errAEEventNotHandled, StatusFor("UnknownMethod"));
    EXPECT_EQ(errAEEventNotHandled, StatusFor("UnknownObject"));
    EXPECT_EQ(errAEEventNotHandled, StatusFor("UnknownInterface"));
}

TEST(Status, OtherNamesHaveTheNearestNumber)
{
    EXPECT_EQ(errAETimeout, StatusFor("Timeout"));
    EXPECT_EQ(errAETimeout, StatusFor("TimedOut"));
    EXPECT_EQ(errAEEventNotPermitted, StatusFor("AccessDenied"));
    EXPECT_EQ(memFullErr, StatusFor("NoMemory"));
    EXPECT_EQ(memFullErr, StatusFor("LimitsExceeded"));
    EXPECT_EQ(errAECorruptData, StatusFor("InvalidArgs"));
    EXPECT_EQ(errAECorruptData, StatusFor("InvalidSignature"));
    EXPECT_EQ(errAECorruptData, StatusFor("InconsistentMessage"));
}

TEST(Status, UnknownNamesAreFailures)
{
    EXPECT_EQ(errAEEventFailed, StatusFor("Failed"));
    EXPECT_EQ(errAEEventFailed, StatusForErrorName(""));
    EXPECT_EQ(errAEEventFailed, StatusForErrorName("com.example.Odd"));
}

TEST(Status, NoErrnoIsSuccess)
{
    for (int error = 0; error < 200; error++)
        EXPECT_LT(StatusForErrno(-error), 0) << error;
}

TEST(Status, ErrnoHasTheNearestNumber)
{
    for (const int lost : {ENOTCONN, ECONNRESET, EPIPE, ESHUTDOWN, ECHILD})
    {
        EXPECT_TRUE(MeansLost(-lost));
        EXPECT_EQ(connectionInvalid, StatusForErrno(-lost));
    }
    EXPECT_FALSE(MeansLost(-ENOMEM));
    EXPECT_FALSE(MeansLost(0));
    EXPECT_EQ(memFullErr, StatusForErrno(-ENOMEM));
    EXPECT_EQ(memFullErr, StatusForErrno(-ENOBUFS));
    EXPECT_EQ(errAECorruptData, StatusForErrno(-EBADMSG));
    EXPECT_EQ(errAECorruptData, StatusForErrno(-ENXIO));
    EXPECT_EQ(errAEEventNotPermitted, StatusForErrno(-EACCES));
    EXPECT_EQ(errAETimeout, StatusForErrno(-ETIMEDOUT));
}
