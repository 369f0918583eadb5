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
// The form of samples that are no longer in the form of their file.
constexpr std::int32_t kDecoded = 0;

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
double Canonical(double dSample)
{
    return std::isnan(dSample) ? std::numeric_limits<double>::quiet_NaN() : dSample + 0.0;
}

// Of the bytes as they lie in the file, which is sooner done. Empty for a form in which equal
// samples may have unequal bytes, and for audio of which not all is there.
std::optional<Fingerprint> OfBytes(const Region& region)
{
    CSoundFile file(region.strPath);
    const std::int64_t nFrameBytes = file.FrameBytes();
    if (!region.channels.empty() || nFrameBytes == 0 || !file.IsWholeNumbers())
        return std::nullopt;
    file.Seek(region.nStart);
    CHash hash;
    std::vector<char> bytes;
    std::int64_t nPiece = 0;
    for (std::int64_t nLeft = region.Length(); nLeft > 0; nLeft -= nPiece)
    {
        nPiece = std::min(nLeft, std::max<std::int64_t>(1, kBytesAtOnce / nFrameBytes));
        if (file.ReadBytes(bytes, nPiece) != nPiece)
            return std::nullopt;
        hash.Add(bytes.data(), bytes.size());
    }
    return Fingerprint{file.Form(), hash.Text()};
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
        canonical.resize(piece.size());
        std::transform(piece.begin(), piece.end(), canonical.begin(), Canonical);
        hash.Add(canonical.data(), canonical.size() * sizeof(double));
    }
    return Fingerprint{kDecoded, hash.Text()};
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
