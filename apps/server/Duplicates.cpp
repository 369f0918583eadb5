#include "apps/server/Duplicates.h"

#include "apps/server/SoundFiles.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace Tarvane::Server
{

namespace
{

constexpr std::int64_t kSamplesAtOnce = 65536;

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

std::vector<std::int32_t> ChannelsOf(const Region& region, const CSoundFile& file)
{
    if (!region.channels.empty())
        return region.channels;
    std::vector<std::int32_t> all(static_cast<std::size_t>(file.Channels()));
    for (std::size_t nChannel = 0; nChannel < all.size(); nChannel++)
        all[nChannel] = static_cast<std::int32_t>(nChannel);
    return all;
}

bool SameSample(double dOne, double dOther)
{
    return dOne == dOther || (std::isnan(dOne) && std::isnan(dOther));
}

// A region's audio, read piece by piece.
class CRegionReader
{
public:
    explicit CRegionReader(const Region& region)
        : m_file(region.strPath), m_channels(ChannelsOf(region, m_file)), m_nLeft(region.Length())
    {
        for (std::int32_t nChannel : m_channels)
        {
            if (nChannel >= m_file.Channels())
                throw CSoundFileError("the file " + region.strPath + " has lost channels");
        }
        m_file.Seek(region.nStart);
    }

    std::int32_t SampleRate() const { return m_file.SampleRate(); }
    std::size_t Channels() const { return m_channels.size(); }
    bool AtEnd() const { return m_nLeft == 0; }

    // The next frames; an empty piece before the end means that the file is too short by now.
    const std::vector<double>& Next(std::int64_t nFrames)
    {
        const std::int64_t nRead = m_file.Read(m_all, std::min(nFrames, m_nLeft));
        m_nLeft -= nRead;
        m_piece.clear();
        const auto nFileChannels = static_cast<std::size_t>(m_file.Channels());
        for (std::size_t nFrame = 0; nFrame < static_cast<std::size_t>(nRead); nFrame++)
        {
            for (std::int32_t nChannel : m_channels)
                m_piece.push_back(
                    m_all[nFrame * nFileChannels + static_cast<std::size_t>(nChannel)]);
        }
        return m_piece;
    }

private:
    CSoundFile m_file;
    std::vector<std::int32_t> m_channels;
    std::int64_t m_nLeft;
    std::vector<double> m_all;
    std::vector<double> m_piece;
};

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

bool SameAudio(const Region& captured, const Region& region)
{
    CRegionReader one(captured);
    std::optional<CRegionReader> other = OpenIfReadable(region);
    if (!other || one.SampleRate() != other->SampleRate() || one.Channels() != other->Channels())
        return false;

    const std::int64_t nFrames =
        std::max<std::int64_t>(1, kSamplesAtOnce / static_cast<std::int64_t>(one.Channels()));
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

bool HasDuplicate(const Document& document, const Region& captured, double dLinkOffset)
{
    const PositionRange places =
        AddedPositions(captured.nPosition, dLinkOffset * captured.nSampleRate);
    for (const Region& region : document.regions)
    {
        // Another stretch of another file is in the same place when it begins there.
        const std::int64_t nPosition = region.TimelineStart() - captured.nStart;
        if (region.nTrackId != captured.nTrackId || region.Length() != captured.Length() ||
            region.nSampleRate != captured.nSampleRate || !places.Contains(nPosition))
            continue;
        if (SameAudio(captured, region))
            return true;
    }
    return false;
}

} // namespace Tarvane::Server
