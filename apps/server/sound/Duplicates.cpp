#include "apps/server/sound/Duplicates.h"

#include "apps/server/sound/Fingerprinting.h"
#include "apps/server/sound/RegionReader.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>
#include <vector>

namespace Tarvane::Server
{

namespace
{

constexpr std::int64_t kSamplesCompared = 262144;
constexpr std::streamsize kBytesCompared = 1 << 20;

// The number nWhole + dPart, 0 <= dPart < 1, as one end of an interval that does or does not
// contain it. Kept apart because the sum would be rounded.
struct IntervalEnd
{
    std::int64_t nWhole;
    double dPart;
    bool fIncluded;
};

// The least trunc(x) of an interval that begins here and is longer than 0.
std::int64_t LeastTruncated(const IntervalEnd& begin)
{
    if (begin.nWhole >= 0)
        return begin.nWhole;
    const bool fWholeIncluded = begin.dPart == 0.0 && begin.fIncluded;
    return fWholeIncluded ? begin.nWhole : begin.nWhole + 1;
}

// The greatest trunc(x) of an interval that ends here and is longer than 0.
std::int64_t GreatestTruncated(const IntervalEnd& end)
{
    if (end.nWhole < 0)
        return end.dPart == 0.0 ? end.nWhole : end.nWhole + 1;
    const bool fBelowWhole = end.dPart == 0.0 && !end.fIncluded;
    return fBelowWhole ? std::max<std::int64_t>(end.nWhole - 1, 0) : end.nWhole;
}

bool SameSample(double dOne, double dOther)
{
    return dOne == dOther || (std::isnan(dOne) && std::isnan(dOther));
}

// Empty when the region's own file is no longer what it was.
std::optional<CRegionReader> OpenIfReadable(const Region& region)
{
    try
    {
        return std::optional<CRegionReader>(std::in_place, region);
    }
    catch (const CSoundFileError&)
    {
        return std::nullopt;
    }
}

// The same frames and channels of one file, whatever its names, need no reading.
bool IsSameStretch(const Region& captured, const Region& region)
{
    std::error_code error;
    return captured.nStart == region.nStart && captured.channels == region.channels &&
           std::filesystem::equivalent(captured.strPath, region.strPath, error);
}

// Whether stretches of one form are equal byte by byte, which is known sooner than sample by
// sample; empty when that does not tell.
std::optional<bool> HasSameBytes(const Region& captured, const Region& region)
try
{
    CSoundFile one(captured.strPath), other(region.strPath);
    if (!region.channels.empty() || one.Form() != other.Form() ||
        one.Channels() != other.Channels() || one.SampleRate() != other.SampleRate())
        return std::nullopt;
    one.Seek(captured.nStart);
    other.Seek(region.nStart);
    const std::int64_t nAtOnce = std::max<std::int64_t>(1, kSamplesCompared / one.Channels());
    std::vector<char> bytes, otherBytes;
    std::int64_t nPiece = 0;
    for (std::int64_t nLeft = captured.Length(); nLeft > 0; nLeft -= nPiece)
    {
        nPiece = std::min(nLeft, nAtOnce);
        if (one.ReadBytes(bytes, nPiece) != nPiece || other.ReadBytes(otherBytes, nPiece) != nPiece)
            return std::nullopt;
        if (bytes != otherBytes)
            return one.IsWholeNumbers() ? std::optional(false) : std::nullopt;
    }
    return true;
}
catch (const CSoundFileError&)
{
    return std::nullopt;
}

bool HasSameSamples(const Region& captured, const Region& region)
{
    CRegionReader one(captured);
    std::optional<CRegionReader> other = OpenIfReadable(region);
    if (!other || one.SampleRate() != other->SampleRate() || one.Channels() != other->Channels())
        return false;

    const std::int64_t nFrames = one.PieceFrames();
    while (!one.AtEnd())
    {
        const std::vector<double>& pieceOne = one.Next(nFrames);
        const std::vector<double>& pieceOther = other->Next(nFrames);
        if (pieceOne.empty() || pieceOne.size() != pieceOther.size())
            return false;
        if (!std::equal(pieceOne.begin(), pieceOne.end(), pieceOther.begin(), SameSample))
            return false;
    }
    return true;
}

bool ReadsTheSame(const Region& captured, const Region& region)
{
    const std::optional<bool> fSame = HasSameBytes(captured, region);
    return fSame ? *fSame : HasSameSamples(captured, region);
}

Region Beginning(Region region)
{
    region.nEnd = std::min(region.nEnd, region.nStart + kLongStretch);
    return region;
}

// Whether the file is a copy of the region's, where telling by the audio would decode it.
bool IsCopy(const Region& captured, const Region& region)
{
    std::error_code error;
    if (captured.nStart != region.nStart || captured.channels != region.channels ||
        CSoundFile(captured.strPath).FrameBytes() != 0 ||
        std::filesystem::file_size(captured.strPath, error) !=
            std::filesystem::file_size(region.strPath, error))
        return false;
    std::ifstream one(captured.strPath, std::ios::binary), other(region.strPath, std::ios::binary);
    std::vector<char> bytes(kBytesCompared), otherBytes(kBytesCompared);
    while (one && other)
    {
        one.read(bytes.data(), kBytesCompared);
        other.read(otherBytes.data(), kBytesCompared);
        if (one.gcount() != other.gcount() ||
            !std::equal(bytes.begin(), bytes.begin() + one.gcount(), otherBytes.begin()))
            return false;
    }
    return one.eof() && other.eof();
}

bool HasSameAudio(CSessionDatabase& session, const Region& captured, const Region& region)
{
    if (IsSameStretch(captured, region))
        return true;
    // Takes of one place, of which there are many, differ from the beginning.
    if (!ReadsTheSame(Beginning(captured), Beginning(region)))
        return false;
    if (captured.Length() <= kLongStretch || IsCopy(captured, region))
        return true;
    const std::optional<Fingerprint> one = FingerprintOf(session, captured);
    const std::optional<Fingerprint> other = FingerprintOf(session, region);
    if (one && other && one->nForm == other->nForm)
        return *one == *other;
    return ReadsTheSame(captured, region);
}

} // namespace

PositionRange AddedPositions(std::int64_t nHostPosition, double dOffsetSamples)
{
    const double dWhole = std::floor(dOffsetSamples);
    const double dPart = dOffsetSamples - dWhole;
    const std::int64_t nSum = static_cast<std::int64_t>(dWhole) + nHostPosition;

    // d runs from nHostPosition away from zero as far as, and without, the next whole number;
    // around zero both ways.
    IntervalEnd begin{nSum, dPart, true};
    IntervalEnd end{nSum, dPart, true};
    if (nHostPosition <= 0)
        begin = {nSum - 1, dPart, false};
    if (nHostPosition >= 0)
        end = {nSum + 1, dPart, false};
    return {LeastTruncated(begin), GreatestTruncated(end)};
}

bool HasDuplicate(CSessionDatabase& session, const Region& captured)
{
    const PositionRange places =
        AddedPositions(captured.nPosition, session.LinkOffset() * captured.nSampleRate);
    // Another stretch of another file is in the same place when it begins there.
    for (const Region& region : session.RegionsThatBegin(
             captured.nTrackId, places.nFirst + captured.nStart, places.nLast + captured.nStart))
    {
        if (region.Length() == captured.Length() && region.nSampleRate == captured.nSampleRate &&
            HasSameAudio(session, captured, region))
            return true;
    }
    return false;
}

} // namespace Tarvane::Server
