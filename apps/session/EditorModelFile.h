// A session file as what an editor is to hold.
#pragma once

#include "apps/editor/EditorModel.h"

#include <filesystem>

namespace Tarvane::Session
{

/// Throws CUsageError for a file that is no session of tarvane-server, or a damaged one.
Editor::Model LoadModel(const std::filesystem::path& path);

} // namespace Tarvane::Session
