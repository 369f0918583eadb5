#include "apps/support/sound/CaptureFolder.h"

#include "apps/support/program/CommandLine.h"
#include "signal/TakeFolder.h"

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

bool KeepsItsSamples(int nFormat)
{
    const int nForm = nFormat & SF_FORMAT_SUBMASK;
    return SampleTypeOf(nFormat) != SampleType::Float || nForm == SF_FORMAT_FLOAT;
}

int FileFormatFor(const SF_INFO& source)
{
    SF_INFO info{};
    info.samplerate = source.samplerate;
    info.channels = source.channels;
    info.format = source.format;
    if (KeepsItsSamples(source.format) && sf_format_check(&info))
    {
        return info.format;
    }
    switch (SampleTypeOf(source.format))
    {
    case SampleType::Integer:
        return SF_FORMAT_WAV | SF_FORMAT_PCM_32;
    case SampleType::Double:
        return SF_FORMAT_WAV | SF_FORMAT_DOUBLE;
    case SampleType::Float:
        break;
    }
    return SF_FORMAT_WAV | SF_FORMAT_FLOAT;
}

template <typename Check> void AsUsageError(Check check)
{
    try
    {
        check();
    }
    catch (const CTakeFolderError& error)
    {
        throw CUsageError(error.what());
    }
}

} // namespace

CTakeFormat TakeFormatFor(const CSoundReader& source)
{
    CTakeFormat format;
    format.nChannels = static_cast<std::uint32_t>(source.Info().channels);
    format.nRate = static_cast<std::uint32_t>(source.Info().samplerate);
    format.samples = SampleTypeOf(source.Info().format);
    format.nFileFormat = FileFormatFor(source.Info());
    format.strStem = source.Path().stem().string();
    format.guide = source.Path();
    return format;
}

void CheckCapturePath(const fs::path& folder, const CSoundReader& source)
{
    AsUsageError([&] { CheckTakePath(folder, TakeFormatFor(source)); });
}

void CheckCaptureFolder(const fs::path& folder)
{
    AsUsageError([&] { CheckTakeFolder(folder); });
}

} // namespace Tarvane
