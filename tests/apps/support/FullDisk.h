// A disk that takes no more, for the life of the object: no file of this process and of those that
// it forks grows beyond so many bytes. One at a time.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace TarvaneTest
{

class CFullDisk
{
public:
    explicit CFullDisk(rlim_t nBytes = 0) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit full{nBytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~CFullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    CFullDisk(const CFullDisk&) = delete;
    CFullDisk& operator=(const CFullDisk&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

} // namespace TarvaneTest
