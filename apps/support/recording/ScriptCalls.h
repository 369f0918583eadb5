// What a script does, in short.
#pragma once

#include <string>
#include <vector>

namespace Tarvane
{

/// The functions that a script calls, each once, in the order of their first calls; print, which
/// every script calls, and what stands between double quotes are left out.
std::vector<std::string> ScriptCalls(const std::string& strScript);

/// Their names in a line, without the choice of the document with which nearly all scripts begin;
/// of a script that calls nothing, the script.
std::string WhatItAsks(const std::string& strScript);

} // namespace Tarvane
