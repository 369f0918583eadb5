// A region's samples as a sound file of their own.
#pragma once

#include "apps/editor/EditorModel.h"

#include <filesystem>

namespace Tarvane::Editor
{

/// What has to be known of the region's file.
struct FileShape
{
    std::int32_t nChannels;
    std::int64_t nFrames;
};

/// Throws CUsageError for a file that cannot be read, and CEditorError for one that does not hold
/// the region.
FileShape ShapeOf(const Region& region);

/// How many channels the region takes of such a file.
std::int32_t ChannelsTaken(const Region& region, const FileShape& shape);
/// Whether it takes all of such a file.
bool IsWholeFile(const Region& region, const FileShape& shape);

/// Writes what the region takes of its file to a new WAV file (RF64 beyond 4 GiB), in a form that
/// holds each sample exactly. Throws as ShapeOf does, and CEditorError when it cannot be written.
void WriteStretch(const Region& region, const std::filesystem::path& file);

} // namespace Tarvane::Editor
