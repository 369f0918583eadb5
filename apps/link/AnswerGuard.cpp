#include "apps/link/AnswerGuard.h"

#include "apps/link/shared/Outcome.h"

#include <csignal>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace Tarvane::Link
{

namespace
{

constexpr std::string_view kExplanation =
    "tarvane-link: the server's answer contradicts itself. Its first line is the number of lines "
    "that follow, none of them empty and none over 999 bytes; --trace shows the answer.\n";

std::string strOutput;

// Only what is safe in a signal handler.
void EndWithWords(int)
{
    (void)!write(STDERR_FILENO, kExplanation.data(), kExplanation.size());
    (void)!write(STDOUT_FILENO, strOutput.data(), strOutput.size());
    _exit(kExitNoAnswer);
}

} // namespace

CAnswerGuard::CAnswerGuard(std::string strLastOutput)
{
    strOutput = std::move(strLastOutput);
    std::signal(SIGABRT, EndWithWords);
}

CAnswerGuard::~CAnswerGuard()
{
    std::signal(SIGABRT, SIG_DFL);
}

} // namespace Tarvane::Link
