// The last word when the server's answer contradicts itself.
#pragma once

#include <string>

namespace Tarvane::Link
{

/// The script link ends the process when an answer's count does not match its lines. While an
/// object lives, the process then says so, prints the given text on the standard output, and ends
/// with kExitNoAnswer. One at a time.
class CAnswerGuard
{
public:
    explicit CAnswerGuard(std::string strLastOutput);
    ~CAnswerGuard();
    CAnswerGuard(const CAnswerGuard&) = delete;
    CAnswerGuard& operator=(const CAnswerGuard&) = delete;
};

} // namespace Tarvane::Link
