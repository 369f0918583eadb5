// Session files as the programs see them: whole, with words for what is wrong.
#pragma once

#include "apps/session/SessionScan.h"
#include "utils/ParameterBlock.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace Tarvane::Session
{

/// Reads all bytes. Throws CUsageError for what cannot be read, is no plain file, or is larger than
/// a session can be (4 GiB).
std::string ReadSessionBytes(const std::filesystem::path& path);

/// Goes through a file's bytes strictly. Files over 50 MB are announced as LoadSession does.
ScannedSession ScanAnnounced(const std::filesystem::path& path, std::string_view bytes);

struct LoadedSession
{
    std::unique_ptr<CParameterBlock> pRoot;
    bool fWhole; ///< false: the records broke off, and pRoot holds what came before
};

/// Files over 50 MB are announced on the standard error stream with how far they are, in steps of
/// ten percent; this reader knows that only where a block ends. Throws
/// CUsageError for what is no session.
LoadedSession LoadSession(const std::filesystem::path& path);

/// Replaces the file whole or not at all. Throws CUsageError for what cannot be written: a tree
/// with a file id or without any name, or a place where no file can be made.
void SaveSession(CParameterBlock& root, const std::filesystem::path& path);

} // namespace Tarvane::Session
