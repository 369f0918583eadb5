// An Ardour 7 session in a folder, kept up to date while Ardour does not have it open.
//
// FOLDER/FOLDER.ardour is the session. FOLDER/interchange/<session>/audiofiles gets links to the
// sound files, or copies. FOLDER/tarvane-link.json says what was put in, so that nothing is put in
// twice: what the user has moved, cut or deleted since stays as he left it. Whenever he has saved
// the session since, the file is kept as FOLDER.ardour.before-tarvane-link (-2, -3 and so on)
// before anything is added.
#pragma once

#include "apps/editor/Editor.h"

#include <filesystem>

namespace Tarvane::Editor
{

class CArdourEditor : public CEditor
{
public:
    struct Settings
    {
        bool fCopyFiles = false; ///< or link to them where they are
        /// Of a new session, in samples per second; 0 for that of the first region. Ardour's clock
        /// counts all usual ones exactly.
        std::int32_t nRate = 0;
    };

    /// The folder is made when there is something to take, in a folder that is there already.
    explicit CArdourEditor(const std::filesystem::path& folder);
    CArdourEditor(const std::filesystem::path& folder, const Settings& settings);

    const Abilities& Table() const override;

    /// The model names all tracks, its regions may be only some. Without a region there is no rate,
    /// and so no new session unless the settings tell one. A track that is there under its name
    /// gets the regions, also when the user has made it; regions with more channels than it has go
    /// to a track of their own. What several sessions are to take, each takes whole or not.
    void Take(const Model& model) override;

    /// The session's file; empty as long as there is none.
    std::filesystem::path File() const;

private:
    std::filesystem::path FileIn(const std::filesystem::path& folder) const;
    /// Of the session; 0 when there is none, and nothing that says what it is to be.
    std::int32_t Rate(const Model& model) const;
    void TakeInto(const std::filesystem::path& folder, std::int32_t nRate,
                  const Model& model) const;

    const std::filesystem::path m_folder;
    const Settings m_settings;
};

} // namespace Tarvane::Editor
