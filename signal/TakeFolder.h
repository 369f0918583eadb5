// Where takes go: folders and names that a view can send to a server.
#pragma once

#include "signal/TakeFormat.h"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace Tarvane
{

/// A folder or a path that takes cannot have. The text is one line that says what to do.
class CTakeFolderError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throw CTakeFolderError, and touch nothing. The first looks at the path of a take, whether or not
/// the folder is there: it must fit the record in which it is published, and a script must be able
/// to carry it. The second looks at the folder.
void CheckTakePath(const std::filesystem::path& folder, const CTakeFormat& format);
void CheckTakeFolder(const std::filesystem::path& folder);

/// The stem with what a script cannot carry replaced, short enough for a name with a number.
std::string TakeStem(const std::string& strStem);
/// Of a file of this form, libsndfile's number: "wav" and so on.
std::string TakeExtension(int nFileFormat);

/// Gives the finished file the first free name "<stem>-<number>.<extension>" in its folder, never
/// one that exists, and returns its path. A process that is killed meanwhile may leave it under
/// both names. Throws std::runtime_error when there is none, or the disk takes no more names; the
/// file then stays where it is.
std::filesystem::path NameTake(const std::filesystem::path& file, const std::string& strStem,
                               const std::string& strExtension);

/// Where the takes of a host go that names no folder: $TARVANE_LINK_CAPTURES, else
/// "tarvane-link/captures" in $XDG_DATA_HOME or in .local/share in the home folder; empty when
/// there is none of these.
std::filesystem::path DefaultCaptureFolder();
/// $XDG_STATE_HOME/tarvane-link, or .local/state/tarvane-link in the home folder; empty when there
/// is neither.
std::filesystem::path TakeStateFolder();

} // namespace Tarvane
