#include "apps/support/program/CommandLine.h"

#include <CLI/CLI.hpp>

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <initializer_list>
#include <sys/resource.h>
#include <system_error>
#include <unistd.h>
#include <vector>

using namespace Tarvane;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

struct Outcome
{
    int nCode;
    std::string strOutput;
    std::string strError;
};

Outcome RunIt(std::initializer_list<const char*> arguments, const std::function<int()>& body)
{
    CLI::App app("Tries the command line.", "tarvane-try");
    int nTrack = 0;
    app.add_option("--track", nTrack);
    AddCommonOptions(app, "it did not work");
    std::vector<char*> pointers{const_cast<char*>("tarvane-try")};
    for (const char* szArgument : arguments)
    {
        pointers.push_back(const_cast<char*>(szArgument));
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int nCode = RunProgram(app, static_cast<int>(pointers.size()), pointers.data(), body);
    return {nCode, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

int Unreached()
{
    ADD_FAILURE() << "the body ran";
    return 0;
}

} // namespace

TEST(CommandLine, CompletionsArePrintedAndNothingElseIsDone)
{
    const Outcome outcome = RunIt({"--completions", "fish"}, &Unreached);
    EXPECT_EQ(outcome.nCode, kExitDone);
    EXPECT_THAT(outcome.strOutput, HasSubstr("complete -c tarvane-try -l track"));
    EXPECT_EQ(outcome.strError, "");
    EXPECT_EQ(RunIt({"--completions", "tcsh"}, &Unreached).nCode, kExitUsage);
}

TEST(CommandLine, TheBodysCodeIsTheProgramsCode)
{
    const Outcome outcome = RunIt({"--track", "2"}, [] { return int(kExitFailed); });
    EXPECT_EQ(outcome.nCode, kExitFailed);
    EXPECT_EQ(outcome.strError, "");
}

TEST(CommandLine, HelpTellsTheExitCodes)
{
    const Outcome outcome = RunIt({"--help"}, Unreached);
    EXPECT_EQ(outcome.nCode, kExitDone);
    EXPECT_THAT(outcome.strOutput,
                HasSubstr("Exit codes: 0 done, 1 it did not work, 2 wrong use or unusable input."));
    EXPECT_EQ(outcome.strError, "");
}

TEST(CommandLine, VersionNamesTheProgram)
{
    const Outcome outcome = RunIt({"--version"}, Unreached);
    EXPECT_EQ(outcome.nCode, kExitDone);
    EXPECT_THAT(outcome.strOutput, StartsWith("tarvane-try 1."));
}

TEST(CommandLine, AnUnknownOptionIsOneLineAndCodeTwo)
{
    const Outcome outcome = RunIt({"--trakc", "2"}, Unreached);
    EXPECT_EQ(outcome.nCode, kExitUsage);
    EXPECT_THAT(outcome.strError, StartsWith("tarvane-try: "));
    EXPECT_THAT(outcome.strError, HasSubstr("--trakc"));
    EXPECT_THAT(outcome.strError, EndsWith("see tarvane-try --help for what it takes.\n"));
    EXPECT_EQ(std::count(outcome.strError.begin(), outcome.strError.end(), '\n'), 1);
}

TEST(CommandLine, AValueOfTheWrongTypeIsCodeTwo)
{
    EXPECT_EQ(RunIt({"--track", "second"}, Unreached).nCode, kExitUsage);
}

TEST(CommandLine, AUsageErrorIsItsLineAndCodeTwo)
{
    const Outcome outcome =
        RunIt({}, []() -> int { throw CUsageError("there is no file x - name one."); });
    EXPECT_EQ(outcome.nCode, kExitUsage);
    EXPECT_EQ(outcome.strError, "tarvane-try: there is no file x - name one.\n");
}

TEST(CommandLine, AnyOtherFailureIsItsLineAndCodeOne)
{
    const Outcome outcome = RunIt({}, []() -> int { throw std::runtime_error("first\nsecond\n"); });
    EXPECT_EQ(outcome.nCode, kExitFailed);
    EXPECT_EQ(outcome.strError, "tarvane-try: first second\n");
}

TEST(CommandLine, WhereNoThreadCanBeMadeItNamesWhatIsShort)
{
    const Outcome outcome =
        RunIt({}, []() -> int { throw std::system_error(EAGAIN, std::generic_category()); });
    EXPECT_EQ(outcome.nCode, kExitFailed);
    EXPECT_THAT(
        outcome.strError,
        StartsWith("tarvane-try: no further thread or process can be made: memory is short"));
}

TEST(CommandLine, AFileThatMayGrowNoFurtherIsAnErrorOfTheWriteAndEndsNothing)
{
    std::signal(SIGXFSZ, SIG_DFL);
    RunIt({},
          []
          {
              std::FILE* const pFile = std::tmpfile();
              rlimit old{};
              ::getrlimit(RLIMIT_FSIZE, &old);
              const rlimit none{0, old.rlim_max};
              ::setrlimit(RLIMIT_FSIZE, &none);
              const ssize_t nWritten = ::write(::fileno(pFile), "x", 1);
              const int nError = errno;
              ::setrlimit(RLIMIT_FSIZE, &old);
              std::fclose(pFile);
              EXPECT_EQ(nWritten, -1);
              EXPECT_EQ(nError, EFBIG);
              return 0;
          });
}
