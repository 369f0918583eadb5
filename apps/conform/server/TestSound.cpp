#include "apps/conform/server/TestSound.h"

#include "apps/support/sound/SoundFile.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <vector>

namespace Tarvane::Conform
{
namespace
{

using Samples = std::vector<short>;

Samples Noise(int nChannels = 1)
{
    static std::minstd_rand generator{std::random_device{}()};
    std::uniform_int_distribution<int> amplitude(-1000, 1000);
    Samples samples(static_cast<std::size_t>(CTestSound::kFrames * nChannels));
    for (short& sample : samples)
        sample = static_cast<short>(amplitude(generator));
    return samples;
}

void Write(const std::string& strPath, const Samples& samples, const SoundKind& kind = {""})
{
    SF_INFO info{};
    info.samplerate = kind.nRate;
    info.channels = kind.nChannels;
    info.format = kind.nFormat;
    const SoundFileHandle pFile(sf_open(strPath.c_str(), SFM_WRITE, &info));
    const auto nItems = static_cast<sf_count_t>(samples.size());
    if (!pFile || sf_write_short(pFile.get(), samples.data(), nItems) != nItems)
        throw std::runtime_error("no sound can be written to " + strPath +
                                 "; free space, or set TMPDIR to a folder that can be written.");
}

} // namespace

CTestSound::CTestSound()
{
    const Samples samples = Noise();
    Write(Take(), samples);
    Write(SameTake(), samples);
    Samples both = Noise();
    both.insert(both.end(), samples.begin(), samples.end());
    Write(LongTake(), both);
    Write(OtherTake(), Noise());
    std::ofstream(NoSound()) << "no sound\n";
}

std::string CTestSound::New(const std::string& strName, const SoundKind& kind) const
{
    const std::string strPath = PathOf(strName);
    std::filesystem::create_directories(std::filesystem::path(strPath).parent_path());
    Write(strPath, Noise(kind.nChannels), kind);
    return strPath;
}

} // namespace Tarvane::Conform
