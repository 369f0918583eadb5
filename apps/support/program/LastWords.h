// The end of a program by an exception that nobody catches.
#pragma once

#include <exception>
#include <string>

namespace Tarvane
{

/// From now on an uncaught exception, of C++ or of the object system, on whatever thread, ends the
/// process with kExitFailed and one line on the standard error stream that begins with the
/// program's name: with no panel, which would wait for a button, and no signal. Main thread.
void SayLastWords(const std::string& strProgram);

/// What an exception that ends a program says to the user: its own words, and what was short where
/// there was no memory, or no thread or process could be made. Any thread.
std::string LastWordsOf(const std::exception& error);

/// Once more, after an application object has put its panel in their place. Main thread.
void SayLastWordsAgain();

} // namespace Tarvane
