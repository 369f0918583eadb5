// How a program ends by what nobody catches.
#include "apps/support/program/LastWords.h"

#include "apps/support/program/CommandLine.h"

#include <CLI/CLI.hpp>

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>

using namespace Tarvane;
using testing::ExitedWithCode;

namespace
{

struct Odd
{
};

// As a program does it, with nobody around the body who would catch.
void OnAThreadOf(void (*body)())
{
    CLI::App app("Tries the last words.", "tarvane-try");
    std::string strName = "tarvane-try";
    char* arguments[] = {strName.data(), nullptr};
    RunProgram(app, 1, arguments,
               [body]
               {
                   std::thread(body).join();
                   return 0;
               });
}

void Raise() { [NSException raise:@"NSTryException" format:@"no %@", @"room"]; }

} // namespace

TEST(LastWords, ExceptionOfAThreadIsTold)
{
    EXPECT_EXIT(OnAThreadOf([] { throw std::runtime_error("the disk\x1b[2J is gone"); }),
                ExitedWithCode(kExitFailed), "tarvane-try: the disk.\\[2J is gone\n");
    EXPECT_EXIT(OnAThreadOf([] { throw Odd(); }), ExitedWithCode(kExitFailed),
                "tarvane-try: an exception of unknown kind\n");
    EXPECT_EXIT(OnAThreadOf([] { std::terminate(); }), ExitedWithCode(kExitFailed),
                "tarvane-try: the program has ended itself\n");
}

TEST(LastWords, ExceptionOfTheObjectSystemIsTold)
{
    EXPECT_EXIT(OnAThreadOf(&Raise), ExitedWithCode(kExitFailed),
                "tarvane-try: NSTryException: no room\n");
}

TEST(LastWords, WhereThereIsNoMemoryTheySaySo)
{
    EXPECT_EQ(LastWordsOf(std::bad_alloc()), "memory is short (std::bad_alloc).");
}

TEST(LastWords, WhereNoThreadCanBeMadeTheyNameWhatIsShort)
{
    // As std::thread throws it.
    const std::error_code code(EAGAIN, std::generic_category());
    EXPECT_EQ(LastWordsOf(std::system_error(code)),
              "no further thread or process can be made: memory is short, or as many run as may (" +
                  code.message() + ").");
    EXPECT_EQ(LastWordsOf(std::system_error(EACCES, std::generic_category(), "the pipe")),
              "the pipe: " + std::generic_category().message(EACCES));
    EXPECT_EXIT(OnAThreadOf([] { throw std::system_error(EAGAIN, std::generic_category()); }),
                ExitedWithCode(kExitFailed),
                "tarvane-try: no further thread or process can be made: memory is short");
}
