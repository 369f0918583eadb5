#include "apps/editor/SoundStretch.h"

#include "apps/editor/Editor.h"
#include "apps/support/sound/SoundFile.h"

#include <algorithm>

namespace Tarvane::Editor
{

namespace
{

constexpr std::int64_t kPieceFrames = 65536;

[[noreturn]] void FailToRead(const Region& region)
{
    throw CEditorError("the file " + region.strFile + " cannot be read as far as the region " +
                       region.strName + " goes.");
}

// T is a sample as it passes through unchanged: int or double.
template <typename T, typename Read, typename Write>
void Copy(const Region& region, std::int32_t nChannels, const Read& read, const Write& write)
{
    const auto nAll = static_cast<std::size_t>(nChannels);
    std::vector<T> all(kPieceFrames * nAll);
    std::vector<T> taken;
    for (std::int64_t nLeft = region.nLength; nLeft > 0;)
    {
        const std::int64_t nFrames = std::min(nLeft, kPieceFrames);
        if (read(all.data(), nFrames) != nFrames)
            FailToRead(region);
        taken.clear();
        for (std::size_t n = 0; n < static_cast<std::size_t>(nFrames); n++)
        {
            for (std::int32_t nChannel : region.channels)
                taken.push_back(all[n * nAll + static_cast<std::size_t>(nChannel)]);
        }
        if (write(region.channels.empty() ? all.data() : taken.data(), nFrames) != nFrames)
            throw CEditorError("a copy of the region " + region.strName +
                               " cannot be written; is the disk full?");
        nLeft -= nFrames;
    }
}

} // namespace

FileShape ShapeOf(const Region& region)
{
    const SF_INFO info = CSoundReader(region.strFile).Info();
    if (info.samplerate != region.nRate)
        throw CEditorError("the file " + region.strFile + " has " +
                           std::to_string(info.samplerate) +
                           " samples per second, and the region " + region.strName + " " +
                           std::to_string(region.nRate) + ".");
    if (region.nStart > info.frames - region.nLength)
        throw CEditorError("the region " + region.strName + " goes on behind the end of " +
                           region.strFile + ".");
    for (std::int32_t nChannel : region.channels)
    {
        if (nChannel < 0 || nChannel >= info.channels)
            throw CEditorError("the file " + region.strFile + " has no channel " +
                               std::to_string(nChannel) + ".");
    }
    return {info.channels, info.frames};
}

std::int32_t ChannelsTaken(const Region& region, const FileShape& shape)
{
    return region.channels.empty() ? shape.nChannels
                                   : static_cast<std::int32_t>(region.channels.size());
}

bool IsWholeFile(const Region& region, const FileShape& shape)
{
    return region.nStart == 0 && region.nLength == shape.nFrames &&
           ChannelsTaken(region, shape) == shape.nChannels;
}

void WriteStretch(const Region& region, const std::filesystem::path& file)
{
    const FileShape shape = ShapeOf(region);
    SF_INFO info{};
    const SoundFileHandle pFrom(sf_open(region.strFile.c_str(), SFM_READ, &info));
    if (pFrom == nullptr || sf_seek(pFrom.get(), region.nStart, SEEK_SET) != region.nStart)
        FailToRead(region);

    const bool fWholeNumbers = SampleTypeOf(info.format) == SampleType::Integer;
    SF_INFO made{};
    made.samplerate = info.samplerate;
    made.channels = ChannelsTaken(region, shape);
    made.format = SF_FORMAT_RF64 | (fWholeNumbers ? SF_FORMAT_PCM_32 : SF_FORMAT_DOUBLE);
    SoundFileHandle pTo(sf_open(file.c_str(), SFM_WRITE, &made));
    if (pTo == nullptr)
        throw CEditorError("a copy of the region " + region.strName +
                           " cannot be made: " + sf_strerror(nullptr));
    sf_command(pTo.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);

    if (fWholeNumbers)
        Copy<int>(
            region, info.channels,
            [&](int* pData, sf_count_t n) { return sf_readf_int(pFrom.get(), pData, n); },
            [&](const int* pData, sf_count_t n) { return sf_writef_int(pTo.get(), pData, n); });
    else
        Copy<double>(
            region, info.channels,
            [&](double* pData, sf_count_t n) { return sf_readf_double(pFrom.get(), pData, n); },
            [&](const double* pData, sf_count_t n)
            { return sf_writef_double(pTo.get(), pData, n); });
    if (sf_close(pTo.release()) != 0)
        throw CEditorError("a copy of the region " + region.strName + " cannot be written.");
}

} // namespace Tarvane::Editor
