#include "tests/apps/support/FailingCalls.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/types.h>
#include <unistd.h>

namespace
{

struct Plan
{
    std::string strCall;
    int nCallsLeft = 0;
    int nError = 0;
    std::string strWaitsFor; // a file; empty for nothing
};
Plan plan;

// True when this call is the one that fails; errno is then set.
bool Fails(const char* szCall)
{
    if (plan.strCall != szCall)
        return false;
    if (!plan.strWaitsFor.empty())
    {
        std::ofstream(plan.strWaitsFor + ".reached");
        while (!std::filesystem::exists(plan.strWaitsFor))
            usleep(1000);
    }
    if (plan.nCallsLeft == 0 || --plan.nCallsLeft > 0)
        return false;
    errno = plan.nError;
    return true;
}

} // namespace

extern "C"
{
    ssize_t __real_write(int nFile, const void* pBytes, size_t nBytes);
    int __real_fsync(int nFile);
    int __real_rename(const char* szFrom, const char* szTo);
    int __real_link(const char* szFrom, const char* szTo);

    ssize_t __wrap_write(int nFile, const void* pBytes, size_t nBytes)
    {
        return Fails("write") ? -1 : __real_write(nFile, pBytes, nBytes);
    }

    int __wrap_fsync(int nFile)
    {
        return Fails("fsync") ? -1 : __real_fsync(nFile);
    }

    int __wrap_rename(const char* szFrom, const char* szTo)
    {
        return Fails("rename") ? -1 : __real_rename(szFrom, szTo);
    }

    int __wrap_link(const char* szFrom, const char* szTo)
    {
        return Fails("link") ? -1 : __real_link(szFrom, szTo);
    }
}

namespace TarvaneTest
{

CFailingCall::CFailingCall(const std::string& strCall, int nCall, int nError)
{
    plan = {strCall, nCall, nError, {}};
}

CFailingCall::~CFailingCall()
{
    plan = {};
}

bool CFailingCall::HasFailed() const
{
    return plan.nCallsLeft == 0;
}

CWaitingCall::CWaitingCall(const std::string& strCall, const std::string& strFile)
{
    plan.strCall = strCall;
    plan.strWaitsFor = strFile;
}

CWaitingCall::~CWaitingCall()
{
    plan = {};
}

} // namespace TarvaneTest
