#include "apps/server/sound/RegionReader.h"

#include <algorithm>
#include <numeric>

namespace Tarvane::Server
{

namespace
{

constexpr std::int64_t kSamplesAtOnce = 65536;

std::vector<std::int32_t> ChannelsOf(const Region& region, const CSoundFile& file)
{
    if (!region.channels.empty())
        return region.channels;
    std::vector<std::int32_t> all(static_cast<std::size_t>(file.Channels()));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

} // namespace

CRegionReader::CRegionReader(const Region& region)
    : m_file(region.strPath), m_channels(ChannelsOf(region, m_file)), m_nLeft(region.Length())
{
    for (std::int32_t nChannel : m_channels)
    {
        if (nChannel >= m_file.Channels())
            throw CSoundFileError("the file " + region.strPath + " has no channel " +
                                  std::to_string(nChannel) + " any more");
    }
    m_file.Seek(region.nStart);
}

const std::vector<double>& CRegionReader::Next(std::int64_t nFrames)
{
    const std::int64_t nRead = m_file.Read(m_all, std::min(nFrames, m_nLeft));
    m_nLeft -= nRead;
    const auto nFileChannels = static_cast<std::size_t>(m_file.Channels());
    if (m_channels.size() == nFileChannels)
    {
        m_all.resize(static_cast<std::size_t>(nRead) * nFileChannels);
        return m_all;
    }
    m_piece.clear();
    for (std::size_t nFrame = 0; nFrame < static_cast<std::size_t>(nRead); nFrame++)
    {
        for (std::int32_t nChannel : m_channels)
            m_piece.push_back(m_all[nFrame * nFileChannels + static_cast<std::size_t>(nChannel)]);
    }
    return m_piece;
}

std::int64_t CRegionReader::PieceFrames() const
{
    return std::max<std::int64_t>(1, kSamplesAtOnce / Channels());
}

} // namespace Tarvane::Server
