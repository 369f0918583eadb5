// A project that Audacity has open, by its script pipe.
//
// Each region comes onto a track of its own, below all others, which is called as its track is: a
// track there cannot hold two clips one above the other. Files of more than two channels come onto
// one track a channel. The clip is called as the region is. The project is saved with each call of
// Take, with all that its user has done since.
#pragma once

#include "apps/editor/AudacityPipe.h"
#include "apps/editor/Editor.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace Tarvane::Editor
{

class CAudacityEditor : public CEditor
{
public:
    struct Settings
    {
        std::filesystem::path pipes = "/tmp"; ///< where Audacity makes its FIFOs
        /// For one call of Take. Another quarter of it may go by until what began is taken back.
        std::chrono::milliseconds patience{40000};
        /// As long as nobody reads the FIFOs; Audacity makes them anew after each call.
        std::chrono::milliseconds untilThere{5000};
    };

    /// A path that ends in .aup3, of a project that is there or is to be made. Throws CUsageError.
    explicit CAudacityEditor(const std::filesystem::path& project);
    CAudacityEditor(const std::filesystem::path& project, const Settings& settings);

    const Abilities& Table() const override;

    /// Audacity has this project open and no other; where it shows an empty one that has no name
    /// yet, the project is opened, or made, there. What was begun and cannot be finished is taken
    /// back; where Audacity does not answer any more, that is done before anything else the next
    /// time, if it still is as it was left.
    void Take(const Model& model) override;

private:
    /// A stretch of sound that Audacity is to import.
    struct Sound
    {
        std::filesystem::path file;
        std::size_t nTracks = 0; ///< that it becomes there
    };
    /// What was begun: the tracks behind the first ones, and what they may be called.
    struct Begun
    {
        std::size_t nBefore = 0;
        std::vector<std::vector<std::string>> names; ///< of each track
    };

    void RequireProject(CAudacityPipe& pipe) const;
    Sound SoundFor(const Region& region, const std::filesystem::path& scratch) const;
    void Put(CAudacityPipe& pipe, const std::string& strTrack, const Region& region,
             const Sound& sound);
    void TakeBack(CAudacityPipe& pipe);

    const std::filesystem::path m_project;
    const Settings m_settings;
    Begun m_begun;
};

} // namespace Tarvane::Editor
