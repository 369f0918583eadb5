// A disk that is full, for the files of this process.
#pragma once

#include <csignal>
#include <cstdint>
#include <sys/resource.h>

namespace TarvaneTest
{

/// While it lives no file of this process grows beyond so many bytes.
class CFileSizeLimit
{
public:
    explicit CFileSizeLimit(std::uintmax_t nMost) : m_fnBefore(::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{nMost, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~CFileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        ::signal(SIGXFSZ, m_fnBefore);
    }
    CFileSizeLimit(const CFileSizeLimit&) = delete;
    CFileSizeLimit& operator=(const CFileSizeLimit&) = delete;

private:
    sighandler_t m_fnBefore;
    rlimit m_before{};
};

} // namespace TarvaneTest
