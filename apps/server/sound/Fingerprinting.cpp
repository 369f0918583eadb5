#include "apps/server/sound/Fingerprinting.h"

#include "apps/server/sound/RegionReader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <limits>
#include <memory>
#include <vector>
#include <xxhash.h>

namespace Tarvane::Server
{

namespace
{

constexpr std::int64_t kBytesAtOnce = 1 << 20;
// The forms of samples that are no longer in the form of their file, which is never one of these.
constexpr std::int32_t kDoubles = 0;
constexpr std::int32_t kFloats = -1;

// XXH3, 128 bits.
class CHash
{
public:
    CHash() : m_pState(XXH3_createState()) { XXH3_128bits_reset(m_pState.get()); }

    void Add(const void* pBytes, std::size_t nBytes)
    {
        XXH3_128bits_update(m_pState.get(), pBytes, nBytes);
    }
    std::string Text() const
    {
        XXH128_canonical_t canonical;
        XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(m_pState.get()));
        std::string strText;
        for (const unsigned char nByte : canonical.digest)
        {
            char szByte[3];
            std::snprintf(szByte, sizeof szByte, "%02x", nByte);
            strText += szByte;
        }
        return strText;
    }

private:
    struct Closer
    {
        void operator()(XXH3_state_t* pState) const { XXH3_freeState(pState); }
    };
    std::unique_ptr<XXH3_state_t, Closer> m_pState;
};

// Equal bytes for what counts as equal: zero has two forms, and what is no number many.
template <typename SAMPLE> SAMPLE Canonical(SAMPLE sample)
{
    return std::isnan(sample) ? std::numeric_limits<SAMPLE>::quiet_NaN() : sample + SAMPLE(0);
}

template <typename SAMPLE> void MakeCanonical(std::vector<SAMPLE>& samples)
{
    std::transform(samples.begin(), samples.end(), samples.begin(), Canonical<SAMPLE>);
}

// Of what read, called for one piece after the other, puts into the numbers that it is given:
// nNumbers for each frame. Empty for audio of which not all is there.
template <typename NUMBER, typename READ>
std::optional<std::string> HashOf(CSoundFile& file, const Region& region, std::int64_t nNumbers,
                                  READ read)
{
    file.Seek(region.nStart);
    CHash hash;
    std::vector<NUMBER> numbers;
    const std::int64_t nAtOnce =
        std::max<std::int64_t>(1, kBytesAtOnce / (nNumbers * std::int64_t(sizeof(NUMBER))));
    std::int64_t nPiece = 0;
    for (std::int64_t nLeft = region.Length(); nLeft > 0; nLeft -= nPiece)
    {
        nPiece = std::min(nLeft, nAtOnce);
        if (read(numbers, nPiece) != nPiece)
            return std::nullopt;
        hash.Add(numbers.data(), numbers.size() * sizeof(NUMBER));
    }
    return hash.Text();
}

std::optional<Fingerprint> Made(std::int32_t nForm, std::optional<std::string> content)
{
    return content ? std::optional(Fingerprint{nForm, *std::move(content)}) : std::nullopt;
}

// As the numbers lie in the file, which is sooner done. Empty for a form in which equal samples may
// have unequal bytes.
std::optional<Fingerprint> OfBytes(const Region& region)
{
    CSoundFile file(region.strPath);
    if (!region.channels.empty() || file.FrameBytes() == 0 || !file.IsWholeNumbers())
        return std::nullopt;
    return Made(file.Form(), HashOf<char>(file, region, file.FrameBytes(),
                                          [&](std::vector<char>& bytes, std::int64_t nFrames)
                                          { return file.ReadBytes(bytes, nFrames); }));
}

// Empty for what is not floats in the file.
std::optional<Fingerprint> OfFloats(const Region& region)
{
    CSoundFile file(region.strPath);
    if (!region.channels.empty() || file.SampleForm() != SF_FORMAT_FLOAT)
        return std::nullopt;
    return Made(kFloats, HashOf<float>(file, region, file.Channels(),
                                       [&](std::vector<float>& samples, std::int64_t nFrames)
                                       {
                                           const std::int64_t nRead = file.Read(samples, nFrames);
                                           MakeCanonical(samples);
                                           return nRead;
                                       }));
}

std::optional<Fingerprint> OfSamples(const Region& region)
{
    CRegionReader reader(region);
    CHash hash;
    std::vector<double> canonical;
    while (!reader.AtEnd())
    {
        const std::vector<double>& piece = reader.Next(reader.PieceFrames());
        if (piece.empty())
            return std::nullopt;
        canonical = piece;
        MakeCanonical(canonical);
        hash.Add(canonical.data(), canonical.size() * sizeof(double));
    }
    return Fingerprint{kDoubles, hash.Text()};
}

// A file changed in this second may change once more in it, which its state would not tell.
bool IsSettled(const FileState& file)
{
    return file.nChanged < std::time(nullptr);
}

} // namespace

std::optional<Fingerprint> FingerprintOf(CSessionDatabase& session, const Region& region)
try
{
    const std::optional<FileState> before = StateOf(region.strPath);
    if (!before)
        return std::nullopt;
    const AudioStretch stretch{*before, region.nStart, region.nEnd, region.channels};
    if (auto kept = session.FindFingerprint(stretch))
        return kept;
    const bool fSettled = IsSettled(*before);
    std::optional<Fingerprint> made = OfBytes(region);
    if (!made)
        made = OfFloats(region);
    if (!made)
        made = OfSamples(region);
    if (made && fSettled && StateOf(region.strPath) == before)
        session.NoteFingerprint(stretch, *made);
    return made;
}
catch (const CSoundFileError&)
{
    return std::nullopt;
}

} // namespace Tarvane::Server
