#include "apps/server/faults/SessionMishaps.h"

namespace Tarvane::Server
{

namespace
{

constexpr const char* kRenamed = " (renamed)";

void LoseLastTrack(CSessionDatabase& session, DocumentKind kind)
{
    const std::vector<Track> tracks = session.Tracks(kind);
    if (!tracks.empty())
        session.DeleteTrack(kind, tracks.back().nId);
}

void MoveTracks(CSessionDatabase& session, DocumentKind kind)
{
    const std::vector<Track> tracks = session.Tracks(kind);
    for (const Track& track : tracks)
    {
        session.MoveTrack(kind, track.nId, 0);
        const std::string strName = track.strName + kRenamed;
        if (!NameFlaw(strName))
            session.RenameTrack(track.nId, strName);
    }
}

} // namespace

void Befall(CSessionDatabase& session, const FaultSet& faults)
{
    for (const DocumentKind kind : kDocumentKinds)
    {
        if (faults.count(Fault::TrackVanishes) != 0)
            LoseLastTrack(session, kind);
        if (faults.count(Fault::TracksMove) != 0)
            MoveTracks(session, kind);
    }
}

} // namespace Tarvane::Server
