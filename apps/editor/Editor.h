// An audio editor that nobody here wrote, as something that takes tracks and regions.
#pragma once

#include "apps/editor/EditorModel.h"
#include "apps/support/program/CommandLine.h"

#include <memory>
#include <optional>
#include <string>

namespace Tarvane::Editor
{

/// What an editor was asked for and did not do. The text is one line for the user: what stood in
/// the way, and what to do about it.
class CEditorError : public CUsageError
{
public:
    using CUsageError::CUsageError;
};

/// The table of what an editor can do. What it cannot is refused for it (RequireAble), in the same
/// words for all.
struct Abilities
{
    const char* szName;              ///< for users
    bool fKnowsWhatItHas = false;    ///< may be given again what it has, and so all there is
    bool fMutes = false;             ///< a muted region stays muted
    bool fTakesSomeChannels = false; ///< some of a file's channels, not only all
    bool fTakesSeveralRates = false; ///< regions of different rates beside one another
    bool (*takesRate)(std::int32_t) = nullptr; ///< whether this one; null for any
    std::int64_t nLargestPosition = 0;         ///< samples: the last that it tells from the next
    std::int64_t nLargestTime = 0; ///< seconds: the last place that it can hold; 0 for any
};

/// One editor's session. One thread at a time.
class CEditor
{
public:
    virtual ~CEditor() = default;

    virtual const Abilities& Table() const = 0;

    /// Puts the regions on the tracks of these names; makes the tracks that it lacks. What the
    /// editor holds already stays as its user has it, and nothing is ever taken away. When this
    /// returns the regions are where the editor keeps them for good; may block for as long as the
    /// editor takes. Throws CEditorError; then none of them is there.
    virtual void Take(const Model& model) = 0;
};

/// Why the table does not let the region be taken, now or ever; empty when it does.
std::optional<std::string> WhyUnable(const Abilities& table, const Region& region);
/// Throws CEditorError for the first region that the table says cannot be taken.
void RequireAble(const Abilities& table, const Model& model);
/// Throws CEditorError for a name or a path that is not UTF-8 text.
void RequireText(const Model& model);

/// The editor that "KIND:WHERE" stands for: "ardour:FOLDER" or "audacity:PROJECT.aup3". Nothing is
/// opened or written yet.
/// Throws CUsageError for a kind that is unknown, and names those that are.
std::unique_ptr<CEditor> MakeEditor(const std::string& strKindAndPlace);

} // namespace Tarvane::Editor
