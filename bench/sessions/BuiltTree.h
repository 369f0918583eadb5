// The tree that a program builds value by value, told to every peer in the same way.
#pragma once

#include <string>
#include <vector>

namespace Bench
{

struct BuiltShape
{
    int nTracks; ///< 0: the values of one track stand in the root itself.
    int nValuesPerTrack;
};

constexpr BuiltShape kBuiltTracks{10417, 96};
constexpr BuiltShape kBuiltFlat{0, 1000000};
/// For who is too slow for a million.
constexpr BuiltShape kBuiltSmall{104, 96};

inline const std::string& RegionName(int n)
{
    static const std::vector<std::string> names = []
    {
        std::vector<std::string> all;
        for (int i = 0; i < 1000; ++i)
            all.push_back("Region " + std::to_string(i));
        return all;
    }();
    return names[static_cast<std::size_t>(n % 1000)];
}

/// Calls add(name, value) for every value of a track.
template <class Add> void AddValues(int nTrack, const BuiltShape& shape, Add&& add)
{
    for (int i = 0; i < shape.nValuesPerTrack; ++i)
    {
        const int n = nTrack + i / 12;
        switch (i % 12)
        {
        case 0:
            add("Name", RegionName(n).c_str());
            break;
        case 1:
            add("Start", 44100.0 * n);
            break;
        case 2:
            add("Length", 22050ll * n);
            break;
        case 3:
            add("Offset", 17ll * n);
            break;
        case 4:
            add("SourceIdentifier", 7919ull * static_cast<unsigned>(n));
            break;
        case 5:
            add("Gain", 0.5F);
            break;
        case 6:
            add("Pan", -0.25F);
            break;
        case 7:
            add("Muted", n % 7 == 0);
            break;
        case 8:
            add("Locked", false);
            break;
        case 9:
            add("Colour", n % 32);
            break;
        case 10:
            add("FadeIn", 0.01 * (n % 100));
            break;
        default:
            add("FadeOut", 0.02 * (n % 100));
        }
    }
}

} // namespace Bench
