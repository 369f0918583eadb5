// Both ends of a pipe, owned. Neither end is inherited by a child unless it is duplicated.
#pragma once

#include <string_view>

namespace Tarvane
{

/// From now on a reader that has gone is a failed write of this process, not its end.
void IgnoreBrokenPipes();

class CPipe
{
public:
    /// Throws std::system_error when the process can open no more files.
    CPipe();
    ~CPipe();
    CPipe(const CPipe&) = delete;
    CPipe& operator=(const CPipe&) = delete;

    /// -1 once closed.
    int ReadEnd() const { return m_nFiles[0]; }
    int WriteEnd() const { return m_nFiles[1]; }
    void CloseRead() { Close(0); }
    void CloseWrite() { Close(1); }

    /// Writes all of it, waiting while the pipe is full. False when nobody reads any more; no
    /// SIGPIPE reaches the process.
    bool Write(std::string_view bytes);

private:
    void Close(int nEnd);
    int m_nFiles[2];
};

} // namespace Tarvane
