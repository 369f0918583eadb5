#include "bench/sessions/Trees.h"

#include "utils/ParameterWalk.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdlib>

namespace Bench
{

namespace
{

void FillFade(CParameterBlock& fade, int n)
{
    fade.AddParameter("Shape", n % 5);
    fade.AddParameter("Seconds", 0.01 * (n % 100));
}

void FillRegion(CParameterBlock& region, int n)
{
    region.AddParameter("Name", ("Region " + std::to_string(n)).c_str());
    region.AddParameter("Start", 44100.0 * n);
    region.AddParameter("Length", 22050ll * n);
    region.AddParameter("Offset", 17ll * n);
    region.AddParameter("SourceIdentifier", 7919ull * static_cast<unsigned>(n));
    region.AddParameter("Gain", 0.5F);
    region.AddParameter("Pan", -0.25F);
    region.AddParameter("Muted", n % 7 == 0);
    region.AddParameter("Locked", false);
    region.AddParameter("Colour", n % 32);
    if (n % 4 == 0)
        region.AddParameter("File", ("/Volumes/Audio/Session/Take " + std::to_string(n)).c_str());
    if (n % 8 != 0)
        return;
    CParameterBlock fade;
    FillFade(fade, n);
    region.AddParameter("FadeIn", &fade);
    region.AddParameter("FadeOut", &fade);
}

} // namespace

void BuildSession(CParameterBlock& root, int nTracks)
{
    for (int nTrack = 0; nTrack < nTracks; ++nTrack)
    {
        CParameterBlock track;
        track.AddParameter("Name", ("Track " + std::to_string(nTrack)).c_str());
        track.AddParameter("Solo", false);
        for (int n = 0; n < kRegionsPerTrack; ++n)
        {
            CParameterBlock region;
            FillRegion(region, nTrack * kRegionsPerTrack + n);
            track.AddParameter("Region", &region);
        }
        root.AddParameter("Track", &track);
    }
}

void BuildDeep(CParameterBlock& root)
{
    CParameterBlock* pInnermost = &root;
    for (int n = 0; n < kDeepLevels; ++n)
    {
        auto* pNested = new CParameterBlock;
        pNested->m_strName = "Nested";
        pInnermost->AddParameter("Before", n);
        pInnermost->m_vParameters.push_back(pNested);
        pInnermost->AddParameter("Behind", n);
        pInnermost = pNested;
    }
}

void BuildFlat(CParameterBlock& root)
{
    for (int n = 0; n < kFlatValues; ++n)
        root.AddParameter(("Value " + std::to_string(n % kFlatNames)).c_str(), n);
}

std::string SaveSession(CParameterBlock& root)
{
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const unsigned long nSize = root.SaveBinarySessionToMemory(pData);
    std::string bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(pData)), nSize);
    CFRelease(pData);
    return bytes;
}

void LoadSession(CParameterBlock& root, std::string& bytes)
{
    if (root.LoadBinarySessionFromMemory(reinterpret_cast<unsigned char*>(bytes.data()),
                                         static_cast<unsigned int>(bytes.size())) != 0)
        std::abort();
}

std::size_t CountValues(const CParameterBlock& root)
{
    std::size_t nValues = 0;
    WalkParameters(root, [&nValues](const CParameter& parameter)
                   { nValues += parameter.m_nType != CParameterBlock::kType; });
    return nValues;
}

} // namespace Bench
