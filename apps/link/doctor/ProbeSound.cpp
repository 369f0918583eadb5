#include "apps/link/doctor/ProbeSound.h"

#include "apps/support/sound/SoundFile.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <random>
#include <stdexcept>
#include <stdlib.h>
#include <unistd.h>

namespace Tarvane::Link
{

namespace
{

constexpr char szSuffix[] = ".wav";
constexpr int kProbeRate = 48000;

std::array<short, CProbeSound::kFrames> Noise()
{
    std::random_device seed;
    std::uniform_int_distribution<int> amplitude(-1000, 1000);
    std::array<short, CProbeSound::kFrames> samples;
    for (short& sample : samples)
        sample = static_cast<short>(amplitude(seed));
    return samples;
}

} // namespace

CProbeSound::CProbeSound(const std::filesystem::path& folder)
    : m_strPath((folder / ("tarvane-link-XXXXXX" + std::string(szSuffix))).string())
{
    const int nFile = mkstemps(m_strPath.data(), sizeof szSuffix - 1);
    if (nFile < 0)
        throw std::runtime_error("no file can be made in " + folder.string() + ": " +
                                 std::strerror(errno));
    SF_INFO info{};
    info.samplerate = kProbeRate;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    const SoundFileHandle pFile(sf_open_fd(nFile, SFM_WRITE, &info, SF_TRUE));
    const auto samples = Noise();
    if (sf_writef_short(pFile.get(), samples.data(), kFrames) != kFrames)
    {
        Remove();
        throw std::runtime_error("no sound can be written in " + folder.string());
    }
}

void CProbeSound::Remove()
{
    unlink(m_strPath.c_str());
}

} // namespace Tarvane::Link
