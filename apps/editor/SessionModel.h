// The tracks and regions of a server's session file.
#pragma once

#include "apps/editor/EditorModel.h"

class CParameterBlock;

namespace Tarvane::Editor
{

/// Of the tree of a binary session that tarvane-server has written; its document for scripts, which
/// is the one that takes come to. A region is called as its file is. Throws CEditorError for a tree
/// of another program, or one that lacks something.
Model ReadModel(CParameterBlock& root);

} // namespace Tarvane::Editor
