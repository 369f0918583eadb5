// A script and what came of it, told to whoever looks for what is wrong between the two sides.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Tarvane
{

/// Prints the server's version, where it has one to tell.
inline constexpr char szVersionScript[] =
    "if type(GetLinkVersion) == 'function' then\nprint(GetLinkVersion())\nend\n";

/// Texts are UTF-8.
struct ScriptExchange
{
    std::string strScript;
    int nStatus = 0;                   ///< of the event; 0 when an answer came
    std::optional<std::string> result; ///< what the answer has as 'Rslt'
    std::optional<std::string> error;  ///< and as 'Errr'
    std::string strCarriersError;      ///< in the words of what carries events; empty for none
};

/// What is to be told of it, a line each: what was sent, what came back with its likely cause, and
/// what the carrier says.
std::vector<std::string> Told(const ScriptExchange& exchange);

/// The text in quotes, cut behind so many bytes, or a few less where a character would be cut, with
/// its line ends visible.
std::string QuotedText(const std::string& strText, std::size_t nEnough = 80);

} // namespace Tarvane
