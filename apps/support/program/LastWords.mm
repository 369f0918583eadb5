#include "apps/support/program/LastWords.h"

#include "apps/support/program/CommandLine.h"
#include "apps/support/text/PlainText.h"

#import <Foundation/Foundation.h>

#include <cstdio>
#include <exception>
#include <new>
#include <system_error>
#include <unistd.h>

namespace Tarvane
{
namespace
{

std::string strName;

// Not by exit(): other threads are at work on what it would destroy.
[[noreturn]] void EndWith(const std::string& strWords)
{
    std::fprintf(stderr, "%s: %s\n", strName.c_str(), PlainText(strWords).c_str());
    std::fflush(nullptr);
    _exit(kExitFailed);
}

std::string TextOf(NSString* string)
{
    const char* const szText = [string UTF8String];
    return szText != nullptr ? szText : "";
}

void EndByObject(NSException* exception)
{
    EndWith(TextOf([exception name]) + ": " + TextOf([exception reason]));
}

[[noreturn]] void EndByTermination()
{
    const std::exception_ptr pException = std::current_exception();
    if (!pException)
        EndWith("the program has ended itself");
    try
    {
        std::rethrow_exception(pException);
    }
    catch (const std::exception& error)
    {
        EndWith(LastWordsOf(error));
    }
    catch (...)
    {
        EndWith("an exception of unknown kind");
    }
}

} // namespace

void SayLastWords(const std::string& strProgram)
{
    strName = strProgram;
    std::set_terminate(&EndByTermination);
    SayLastWordsAgain();
}

std::string LastWordsOf(const std::exception& error)
{
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
        return "memory is short (" + std::string(error.what()) + ").";
    const auto* const pError = dynamic_cast<const std::system_error*>(&error);
    if (pError == nullptr || pError->code() != std::errc::resource_unavailable_try_again)
        return error.what();
    return "no further thread or process can be made: memory is short, or as many run as may (" +
           std::string(error.what()) + ").";
}

void SayLastWordsAgain() { NSSetUncaughtExceptionHandler(&EndByObject); }

} // namespace Tarvane
