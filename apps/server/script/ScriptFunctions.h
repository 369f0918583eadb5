// The functions that the server offers to scripts, on top of the sandbox.
//
// A script selects a document first; the selection holds for that script. Every function but the
// two that select, GetLinkVersion, GetUpdateCount and the two that know the null id refuses to work
// without one.
//
//     SelectScriptDocument()       true, and selects it, when the server has the document
//     SelectAudioSuiteDocument()   likewise
//     GetLinkVersion()             the server's version, "1.2.3"; for whoever asks, never the view
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
//
// Of use to clients that have the server export, render, process and clear:
//
//     GetSelectedRegionID()        the null id when none is
//     IsNullRegionID(id)           1 for the null id, else 0
//     IsNullProcessID(id)          likewise
//     GetSampleRate()              of the selected region; without one, of the document's first
//     ExportRegion(idRegion)       writes the region's audio to a new file and returns its path
//     RegionRender(idRegion)       writes the region's audio to a new file, which the region then
//                                  plays, where it did before
//     GetRegionStartPosition(idRegion), GetRegionEndPosition(idRegion)
//                                  on the timeline, in samples; the end is not part of the region
//     CreateProcess(strKind, strHost, tInputs, tOutputs)
//                                  the id of a new process (Processes.h). Inputs are tables with
//                                  IOType, Track, Start and End, outputs tables with Track
//     FindLastProcessCreated()     the null id when there is none
//     SelectProcess(idProcess)     selects the region that the process made
//     GetMarkerTrackID(idTrack, 0) the track of a track's marker areas
//     CountMarkerAreas(idMarker), GetMarkerAreaID(idMarker, nArea), DeleteMarkerArea(idArea)
//     GetRegionCount(idTrack), GetRegionID(idTrack, nRegion), DeleteRegion(idRegion)
//                                  places count from 0 and close up after a deletion
#pragma once

#include "apps/server/database/SessionDatabase.h"
#include "apps/server/sandbox/LuaSandbox.h"
#include "apps/server/sound/RenderFolder.h"

#include <optional>
#include <vector>

namespace Tarvane::Server
{

/// What the functions of one running script share.
class CScriptContext
{
public:
    /// fHasDocuments: false makes both documents unselectable. Session and folder must outlive the
    /// object.
    CScriptContext(CSessionDatabase& session, CRenderFolder& folder, bool fHasDocuments)
        : m_session(session), m_folder(folder), m_fHasDocuments(fHasDocuments)
    {
    }

    CSessionDatabase& Session() { return m_session; }
    /// Where exported and rendered audio goes.
    CRenderFolder& Folder() { return m_folder; }
    /// False when the document is not there.
    bool Select(DocumentKind kind);
    /// A document was asked for that is not there.
    bool SelectionFailed() const { return m_fSelectionFailed; }
    /// Throws CScriptError when nothing is selected.
    DocumentKind Selected() const;
    /// Throw CScriptError when the selected document has no such thing.
    Track FindTrack(std::int64_t nTrackId) const;
    Region FindRegion(std::int64_t nRegionId) const;

private:
    CSessionDatabase& m_session;
    CRenderFolder& m_folder;
    bool m_fHasDocuments;
    std::optional<DocumentKind> m_selected;
    bool m_fSelectionFailed = false;
};

/// All functions. The context must outlive them.
std::vector<ScriptFunction> MakeScriptFunctions(CScriptContext& context);

/// Whether the name of a function that changes the session stands anywhere in the script, comments
/// and texts included.
bool NamesChange(std::string_view strScript);

/// The functions by subject, each list in a source file of its own.
std::vector<ScriptFunction> DocumentFunctions(CScriptContext& context);
std::vector<ScriptFunction> TrackFunctions(CScriptContext& context);
std::vector<ScriptFunction> RegionFunctions(CScriptContext& context);
std::vector<ScriptFunction> RenderFunctions(CScriptContext& context);
std::vector<ScriptFunction> ProcessFunctions(CScriptContext& context);
std::vector<ScriptFunction> ClearingFunctions(CScriptContext& context);

} // namespace Tarvane::Server
