// What must hold however often server, host and bus have ended and the disk was full.
//
//   acknowledged-once     every finished element has one acknowledge, with the outcome that its
//                         host was told; an element whose host was killed has one at most
//   arrives-in-the-end    every capture is delivered or a duplicate in the end, by whichever host,
//                         but for what the server refused, which is captured again
//   in-session-once       what is acknowledged as delivered stands in the session once, and
//                         what the server refused not at all; no region stands there twice
//   on-its-track, at-its-sample, with-its-length
//                         wherever a captured file stands in the session
//   duplicate-is-there    what is called a duplicate stands at its place already, and is not added
//   not-doubled           what is captured again at its place is not added beside the first
//   file-kept             no finished capture has lost or changed its file, nor any region
//   captured-by-somebody  no region and no file is there that nobody captured
//   refused-for-cause     the server refuses a capture for a full disk alone
//   undelivered-for-cause a capture comes back undelivered only when it was refused, or server or
//                         bus were away
//   no-growth             memory, descriptors, threads
#pragma once

#include "soak/Evidence.h"

#include <string>
#include <vector>

namespace Tarvane::Soak
{

/// Every break of an invariant, each with the captures concerned. Empty when all hold.
std::vector<Finding> CheckRound(const RoundEvidence& evidence);

/// Two samples of one process, the last taken when it had nothing to do. nAllowance, in KiB, is
/// what memory may differ by all the same, nDescriptors what a process may have open more at one
/// time than at another; threads may not grow at all.
std::vector<Finding> CheckGrowth(const std::string& strProcess, const ProcessSample& first,
                                 const ProcessSample& last, long nAllowance, long nDescriptors = 0);

} // namespace Tarvane::Soak
