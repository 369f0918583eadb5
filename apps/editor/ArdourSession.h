// The text of an Ardour 7 session, to which tracks and regions are added. What stands in it already
// stays byte by byte, but for the counter of ids.
#pragma once

#include <cstdint>
#include <map>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <vector>

namespace Tarvane::Editor
{

/// Any one thread. What takes a text throws CEditorError when that is no session of Ardour 7.
class CArdourSession
{
public:
    /// The text of a new session with a master of so many channels and nothing else. The rate is
    /// one that CanHold.
    static std::string NewText(const std::string& strName, std::int32_t nRate,
                               std::size_t nChannels);
    /// Whether Ardour's clock counts samples of this rate exactly.
    static bool CanHold(std::int32_t nRate);

    explicit CArdourSession(std::string strText);

    std::string Name() const;
    std::int32_t Rate() const;

    struct ArdourTrack
    {
        std::int64_t nId = 0;
        std::string strName;
        std::size_t nChannels = 0; ///< of its input
    };
    /// Audio tracks, added ones too. Null when there is none; valid until a track is added.
    const ArdourTrack* TrackById(std::int64_t nId) const;
    const ArdourTrack* TrackByName(const std::string& strName) const;
    /// Whether anything, a bus for instance, is called so.
    bool IsTaken(const std::string& strName) const;
    /// Returns its id. The name is not taken.
    std::int64_t AddTrack(const std::string& strName, std::size_t nChannels);

    /// A channel, from 0, of a sound file of the session's own folder. Returns its id, also when
    /// the session has it already.
    std::int64_t AddSource(const std::string& strFile, std::int32_t nChannel);

    /// A stretch of these sources, in samples.
    struct Stretch
    {
        std::string strName;
        std::int64_t nPosition = 0;
        std::int64_t nStart = 0;
        std::int64_t nLength = 0;
        std::vector<std::int64_t> sources;
        bool fMuted = false;
    };
    /// False when the track's playlist has this stretch of these sources there already: nothing is
    /// added then. It lies above all that is there, and has no fades.
    bool AddRegion(std::int64_t nTrackId, const Stretch& stretch);

    /// With all that was added.
    std::string Text() const;

private:
    struct Playlist
    {
        pugi::xml_node there; ///< empty for an added one
        std::string strOpening;
        std::vector<std::string> regions; ///< added
        std::int64_t nLayers = 0;
        std::set<std::string> stretches; ///< all of them, as KeyOf
    };

    void ReadTracks();
    void ReadPlaylist(pugi::xml_node playlist);
    std::string RouteText(std::int64_t nId, const std::string& strName, std::size_t nChannels,
                          std::int64_t nPlaylist);
    std::int64_t NewId() { return m_nNextId++; }

    const std::string m_strText;
    pugi::xml_document m_document;
    pugi::xml_node m_session;
    std::int64_t m_nNextId = 1;
    std::int64_t m_nNextOrder = 0;
    std::string m_strMaster; ///< its name; empty when there is none
    std::size_t m_nMasterChannels = 0;
    std::vector<ArdourTrack> m_tracks;
    std::set<std::string> m_names;
    std::map<std::int64_t, std::int64_t> m_playlistOf; ///< by track
    std::map<std::int64_t, Playlist> m_playlists;
    std::map<std::pair<std::string, std::int32_t>, std::int64_t> m_sources;
    std::string m_strNewSources;
    std::string m_strNewRoutes;
};

} // namespace Tarvane::Editor
