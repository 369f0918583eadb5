// What the takes of a host are made of.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace Tarvane
{

/// The number type in which samples pass through the capture core without a change.
enum class SampleType
{
    Integer, ///< std::int32_t, full scale
    Float,   ///< float; full scale is 1
    Double,  ///< double; full scale is 1
};

struct CTakeFormat
{
    std::uint32_t nChannels = 2; ///< 1 to 64
    std::uint32_t nRate = 48000; ///< samples per second, 8000 to 768000
    /// What Process is given. Hosts give Float.
    SampleType samples = SampleType::Float;
    /// The container and sample form of the files, as libsndfile's SF_FORMAT numbers them. 0 is
    /// Broadcast WAV of 24 bits, which becomes RF64 beyond 4 GB.
    int nFileFormat = 0;
    /// The files are called "<stem>-<number>.<extension>". What a script cannot carry is replaced.
    std::string strStem = "take";
    /// What the takes were played from, where there is such a file. The view only logs it.
    std::filesystem::path guide;
};

/// Broadcast WAV or RF64 with samples of this form; the other choices for nFileFormat.
int TakeFormat24Bit();
int TakeFormatFloat();

} // namespace Tarvane
