// What the server keeps: two documents with their tracks and regions, the offset between the
// timelines, and a count of changes. A value; copies are whole and independent. It is what whole
// sessions are read, written and checked as; a server at work has its session in a database
// (SessionDatabase.h).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Server
{

/// The id of nothing. Ids are given out rising from 1, are unique in their session and never used
/// again.
constexpr std::int64_t kNullId = 0;

/// Sample positions go as far as 64-bit floats, in which clients keep them, tell single samples
/// apart.
constexpr std::int64_t kLargestPosition = std::int64_t(1) << 53;

/// A client reads a name as one line of at most so many bytes.
constexpr std::size_t kLongestName = 999;

/// The offset between the timelines, either way, in seconds.
constexpr double kLargestLinkOffset = 1e6;

struct Track
{
    std::int64_t nId = kNullId;
    std::string strName;
};

/// A stretch of a sound file on a track.
struct Region
{
    std::int64_t nId = kNullId;
    std::int64_t nTrackId = kNullId;
    std::string strPath; ///< full, UTF-8
    /// In frames of the file: from nStart up to, and without, nEnd.
    std::int64_t nStart = 0;
    std::int64_t nEnd = 0;
    /// The place of the file's first frame on the document's timeline, in samples of the file's
    /// rate. The region itself thus begins at nPosition + nStart.
    std::int64_t nPosition = 0;
    std::int32_t nSampleRate = 0;
    /// Channels of the file that the region takes, from 0 and rising; empty means all of them.
    std::vector<std::int32_t> channels;
    bool fMuted = false;

    std::int64_t Length() const { return nEnd - nStart; }
    std::int64_t TimelineStart() const { return nPosition + nStart; }
};

/// A marked stretch of a track's timeline, in samples: from nStart up to, and without, nEnd.
struct MarkerArea
{
    std::int64_t nId = kNullId;
    std::int64_t nTrackId = kNullId;
    std::int64_t nStart = 0;
    std::int64_t nEnd = 0;
};

/// A stretch of a track's timeline that a process reads.
struct ProcessInput
{
    std::int64_t nIOType = 0; ///< what the stretch is to the process (Processes.h)
    std::int64_t nTrackId = kNullId;
    std::int64_t nStart = 0;
    std::int64_t nEnd = 0;
};

struct Process
{
    std::int64_t nId = kNullId;
    std::string strKind;
    std::string strHost; ///< the kind of application that asked for it, in its own words
    std::vector<ProcessInput> inputs;
    std::vector<std::int64_t> outputTrackIds;
    /// What the process made; null when its inputs held no audio, or when it was deleted.
    std::int64_t nRegionId = kNullId;
};

/// Everything stands in the order in which it was added; a thing's place in that order is its
/// number for clients.
struct Document
{
    std::vector<Track> tracks;
    std::vector<Region> regions;
    std::vector<MarkerArea> markerAreas;
    std::vector<Process> processes;
    std::int64_t nSelectedRegionId = kNullId;
    double dDisplayPosition = 0.0; ///< samples

    /// Null when there is none.
    const Track* FindTrack(std::int64_t nTrackId) const;
    const Region* FindRegion(std::int64_t nRegionId) const;
    const MarkerArea* FindMarkerArea(std::int64_t nAreaId) const;
    const Process* FindProcess(std::int64_t nProcessId) const;
};

enum class DocumentKind : int
{
    Script = 0,
    AudioSuite = 1
};
inline constexpr std::array kDocumentKinds{DocumentKind::Script, DocumentKind::AudioSuite};
/// "script" and "audiosuite".
const char* DocumentName(DocumentKind kind);

class CSession
{
public:
    CSession() = default;
    /// A new session: both documents with tracks of these names. The names and the offset are valid
    /// (NameFlaw, LinkOffsetFlaw).
    CSession(const std::vector<std::string>& trackNames, double dLinkOffset);

    const Document& GetDocument(DocumentKind kind) const;
    /// Seconds by which the server's timeline is ahead of the host's.
    double LinkOffset() const { return m_dLinkOffset; }
    /// Rises by one with every change.
    std::int64_t UpdateCount() const { return m_nUpdateCount; }
    std::int64_t NextId() const { return m_nNextId; }

    /// Puts a stored session together again; the caller checks it with Flaw.
    static CSession Restore(std::array<Document, 2> documents, double dLinkOffset,
                            std::int64_t nUpdateCount, std::int64_t nNextId);
    /// What makes this no session that the server can work with, in words; empty when it is sound.
    std::optional<std::string> Flaw() const;

private:
    std::array<Document, 2> m_documents;
    double m_dLinkOffset = 0.0;
    std::int64_t m_nUpdateCount = 0;
    std::int64_t m_nNextId = 1;
};

/// Why this can be no name of a track or of anything else that a client reads as a line: "is empty"
/// for instance. Empty when it can.
std::optional<std::string> NameFlaw(std::string_view strName);
std::optional<std::string> LinkOffsetFlaw(double dSeconds);
/// Of the part of a region that needs no file: its stretch and its place.
std::optional<std::string> RegionPlaceFlaw(const Region& region);
/// Of a stretch of a timeline.
std::optional<std::string> StretchFlaw(std::int64_t nStart, std::int64_t nEnd);

} // namespace Tarvane::Server
