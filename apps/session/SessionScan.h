// A session's bytes gone through record by record, strictly: what a writer never writes is a flaw,
// also where a reader would get along with it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Session
{

struct Flaw
{
    std::size_t nOffset; ///< bytes from the start of the file
    std::string strReason;
    std::string strPath; ///< the parameter, in the form of EntryPath; empty in the header
};

/// What the records hold, up to the first flaw.
struct Statistics
{
    static constexpr int kTypes = 10; ///< index: the type tag

    std::uint64_t count[kTypes] = {}; ///< parameters of each type, the root included
    std::uint64_t bytes[kTypes] = {}; ///< of their records, tags included; of a block its own alone
    std::vector<std::uint64_t> uses;  ///< of each token
    std::size_t nDeepest = 0;         ///< levels below the root
    std::string strDeepestPath;
    std::size_t nMostChildren = 0;
};

struct ScannedSession
{
    std::vector<std::string> names; ///< by token; names[0] is empty
    std::size_t nRootOffset = 0;
    Statistics statistics;
    std::optional<Flaw> flaw;
};

/// Told the bytes gone through so far, after each record.
using ScanProgress = std::function<void(std::size_t)>;

ScannedSession Scan(std::string_view bytes, const ScanProgress& progress = {});

/// "offset 57: a bool is neither 0 nor 1, in Track[2]/Solo".
std::string FlawText(const Flaw& flaw);

} // namespace Tarvane::Session
