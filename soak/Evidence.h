// What one round of a soak leaves behind, gathered from the hosts' answers and logs, the server's
// log and session file, and the disk.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tarvane::Soak
{

enum class Outcome
{
    Delivered,    ///< acknowledged with fNotDelivered 0
    Duplicate,    ///< acknowledged with fNotDelivered 1, in the words for a duplicate
    Undelivered,  ///< acknowledged with fNotDelivered 1 otherwise
    NotPublished, ///< the capture itself failed; there is no element
    Unanswered,   ///< the host ended before it told
};

enum class FileState
{
    Intact, ///< holds what was captured
    Changed,
    Missing,
};

/// One try to deliver a capture at one place. What no server got is tried again by the host; what
/// was refused, or is not whole, is captured again at its place.
struct Attempt
{
    int nLife = 0; ///< the host process, counted over the whole soak
    int nTrack = 0;
    std::int64_t nPosition = 0; ///< on the host's timeline, samples
    std::int64_t nOffset = 0;   ///< the server's timeline minus the host's, samples
    std::int64_t nFrames = 0;
    Outcome outcome = Outcome::Unanswered;
    int nElement = -1;                   ///< -1 where nobody knows
    std::string strPath;                 ///< of the captured file; empty where nobody knows
    FileState file = FileState::Missing; ///< of that file, at the end of the round
    bool fServerAway = false;            ///< server or bus were away at some time of the attempt
    bool fLate = false;       ///< by the host, of a capture of an earlier attempt or host
    bool fViewKilled = false; ///< meanwhile; the next view has taken it in hand anew
};

/// A write to the acknowledge property.
struct Acknowledge
{
    int nElement = 0;
    int nHandled = 0;
    int nNotDelivered = 0;
    int nFinal = 0;
};

/// A host process, from its start to its end or to the end of the round.
struct Life
{
    int nLife = 0;
    bool fKilled = false;
    int nElementsBefore = 0;               ///< finished in earlier rounds
    std::vector<Acknowledge> acknowledges; ///< since its start
};

/// The server's answer to the command that adds a captured file.
struct ServerAnswer
{
    std::string strPath;
    std::string strError; ///< empty when the region was added
};

struct SeenRegion
{
    std::string strPath;
    int nTrack = 0; ///< place in the list of tracks
    std::int64_t nPosition = 0;
    std::int64_t nStart = 0;
    std::int64_t nEnd = 0;
    bool fFileThere = false;
};

struct RoundEvidence
{
    std::vector<Attempt> attempts; ///< of one place in the order in which they were made
    std::vector<Life> lives;
    std::vector<ServerAnswer> answers;
    std::vector<SeenRegion> regions;
    std::vector<std::string> strayFiles; ///< in the capture folders, of no answered attempt
};

/// Of a process that is idle.
struct ProcessSample
{
    long nMemory = 0; ///< resident and its own, KiB
    long nDescriptors = 0;
    long nThreads = 0;
    long nObjects = 0; ///< of the object system, alive; of a host
};

/// A broken invariant.
struct Finding
{
    std::string strInvariant;
    std::string strWhat;
};

} // namespace Tarvane::Soak
