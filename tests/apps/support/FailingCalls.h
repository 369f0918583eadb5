// System calls that fail when a test says so. The linker puts them in the place of the real ones
// (--wrap), in the programs that are built so.
#pragma once

#include <string>

namespace TarvaneTest
{

/// For the life of the object the n-th call from now on (from 1) of "write", "fsync", "rename" or
/// "link" fails with the error. One at a time.
class CFailingCall
{
public:
    CFailingCall(const std::string& strCall, int nCall, int nError);
    ~CFailingCall();
    CFailingCall(const CFailingCall&) = delete;
    CFailingCall& operator=(const CFailingCall&) = delete;

    bool HasFailed() const;
};

/// For the life of the object such a call makes the file "<strFile>.reached" and waits until
/// strFile is there, in processes forked meanwhile as well.
class CWaitingCall
{
public:
    CWaitingCall(const std::string& strCall, const std::string& strFile);
    ~CWaitingCall();
    CWaitingCall(const CWaitingCall&) = delete;
    CWaitingCall& operator=(const CWaitingCall&) = delete;
};

} // namespace TarvaneTest
