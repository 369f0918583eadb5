#include "apps/conform/TestSound.h"

#include "apps/support/SoundFile.h"

#include <array>
#include <fstream>
#include <random>
#include <stdexcept>

namespace Tarvane::Conform
{
namespace
{

using Samples = std::array<short, CTestSound::kFrames>;

Samples Noise()
{
    std::random_device seed;
    std::minstd_rand generator(seed());
    std::uniform_int_distribution<int> amplitude(-1000, 1000);
    Samples samples;
    for (short& sample : samples)
        sample = static_cast<short>(amplitude(generator));
    return samples;
}

void Write(const std::string& strPath, const Samples& samples)
{
    SF_INFO info{};
    info.samplerate = CTestSound::kRate;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    const SoundFileHandle pFile(sf_open(strPath.c_str(), SFM_WRITE, &info));
    if (!pFile ||
        sf_writef_short(pFile.get(), samples.data(), CTestSound::kFrames) != CTestSound::kFrames)
        throw std::runtime_error("no sound can be written to " + strPath +
                                 "; free space, or set TMPDIR to a folder that can be written.");
}

} // namespace

CTestSound::CTestSound()
{
    const Samples samples = Noise();
    Write(Take(), samples);
    Write(SameTake(), samples);
    Write(OtherTake(), Noise());
    std::ofstream(NoSound()) << "no sound\n";
}

} // namespace Tarvane::Conform
