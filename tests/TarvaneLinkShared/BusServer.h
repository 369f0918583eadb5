#pragma once

/// What the server program of the bus tests answers to. Any other script is printed back.
namespace BusServer
{
inline constexpr char szReady[] = "ready";

inline constexpr char szError[] = "error";   ///< prints nothing, with the error text szErrorText
inline constexpr char szSilent[] = "silent"; ///< a reply without a result
inline constexpr char szRefuse[] = "refuse"; ///< the handler fails with kRefusal
inline constexpr char szSlow[] = "slow";     ///< prints szSlow, half a second late
inline constexpr char szEnd[] = "end";       ///< the process ends instead of answering

inline constexpr char szErrorText[] = "[string \"script\"]:1: n\xC3\xB6";
inline constexpr int kRefusal = -1234;
} // namespace BusServer
