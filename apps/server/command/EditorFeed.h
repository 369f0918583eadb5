// Hands what is new in the session on to an editor.
#pragma once

#include "apps/editor/Editor.h"
#include "apps/server/database/SessionDatabase.h"

#include <memory>

namespace Tarvane::Server
{

/// The editor gets the tracks and regions of the document for scripts, to which takes are sent.
/// What is renamed, moved or deleted here is not so there: what an editor holds is its user's. A
/// region that its table never lets in, one before the beginning of the timeline for instance, is
/// named on the standard error stream and stays here alone: to refuse it would have it sent again
/// for ever. Any one thread. All operations throw CEditorError, and then the editor has nothing of
/// it, and SQLite::Exception.
class CEditorFeed
{
public:
    explicit CEditorFeed(std::unique_ptr<Editor::CEditor> pEditor);

    /// The session to begin with: the editor gets what it has not had, if it knows what that is.
    void Begin(CSessionDatabase& session);
    /// What the command in the middle of which the session is has added, or given other audio.
    void Pass(CSessionDatabase& session);

private:
    std::unique_ptr<Editor::CEditor> m_pEditor;
};

} // namespace Tarvane::Server
