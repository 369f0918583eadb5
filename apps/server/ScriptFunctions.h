// The functions that the server offers to scripts, on top of the sandbox.
//
// A script selects a document first; the selection holds for that script. Every function but the
// two that select and GetUpdateCount refuses to work without one.
//
//     SelectScriptDocument()       true, and selects it, when the server has the document
//     SelectAudioSuiteDocument()   likewise
//     GetUpdateCount()             count of the session's changes so far
//     GetLinkSMPTEOffset()         seconds by which the server's timeline is ahead of the host's
//     MoveDisplayToPosition(dPosition)
//                                  moves the display to a place on the timeline, in samples
//     GetTrackCount()
//     GetTrackID(nTrack)           the id of the track at a place in the list, from 0
//     GetTrackName(idTrack)
//     CheckForDuplicateRegion(idTrack, strPath, nPosition, nStart, nEnd)
//                                  1 when the audio is on the track already, else 0; nPosition is
//                                  the host's, without the link offset (Duplicates.h)
//     AddAudioRegion(idTrack, strPath, fSelect, fMute, nPosition, nStart, nEnd [, 1, tChannels])
//                                  adds frames nStart to, and without, nEnd of the sound file, with
//                                  the file's first frame at nPosition, and returns the region's
//                                  id. fSelect makes it the document's selected region; fMute adds
//                                  it muted. 1 and a table of channel numbers, from 0 and rising,
//                                  add these channels of the file alone.
#pragma once

#include "apps/server/LuaSandbox.h"
#include "apps/server/Session.h"

#include <optional>
#include <vector>

namespace Tarvane::Server
{

// What the functions of one running script share.
class CScriptContext
{
public:
    // fHasDocuments: false makes both documents unselectable. The session must outlive the object.
    CScriptContext(CSession& session, bool fHasDocuments)
        : m_session(session), m_fHasDocuments(fHasDocuments)
    {
    }

    CSession& Session() { return m_session; }
    // False when the document is not there.
    bool Select(DocumentKind kind);
    // Throw CScriptError when nothing is selected.
    DocumentKind Selected() const;
    const Document& SelectedDocument() const;
    // Throws CScriptError when the selected document has no such track.
    const Track& FindTrack(std::int64_t nTrackId) const;

private:
    CSession& m_session;
    bool m_fHasDocuments;
    std::optional<DocumentKind> m_selected;
};

// All functions. The context must outlive them.
std::vector<ScriptFunction> MakeScriptFunctions(CScriptContext& context);

// The functions by subject, each list in a source file of its own.
std::vector<ScriptFunction> DocumentFunctions(CScriptContext& context);
std::vector<ScriptFunction> TrackFunctions(CScriptContext& context);
std::vector<ScriptFunction> RegionFunctions(CScriptContext& context);

} // namespace Tarvane::Server
