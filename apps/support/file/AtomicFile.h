// Files that are whole at every instant, whatever ends the process or the machine.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Tarvane
{

/// Replaces the file's content, or creates the file. When this returns, the new content is on disk;
/// before that, or after a failure, the old content stands, and never a mixture. The content goes
/// to a neighbour of the file, "<name>.saving", which then takes the file's place; a neighbour left
/// behind by an ended process is written over. The file's permissions stay as they are. What is no
/// plain file is not replaced: a link (resolve it first), a folder, a pipe, a device.
/// Throws std::system_error: what() says which step failed on which file.
void ReplaceFile(const std::filesystem::path& file, std::string_view bytes);

/// For a new content that somebody else writes: the neighbour to write it to, and then, as above,
/// to move in the file's place. The neighbour takes over the file's permissions.
std::filesystem::path NeighbourOf(const std::filesystem::path& file);
void MoveNeighbourIntoPlace(const std::filesystem::path& file);

/// Gives the file a second name that nothing else has: "<name><suffix>", or the first free one of
/// "<name><suffix>-2", "<name><suffix>-3" and so on; one that an interrupted call has given it is
/// taken again. Under that name the content stands whatever becomes of the first one. Returns the
/// second name. Throws std::system_error.
std::filesystem::path KeepUnderSecondName(const std::filesystem::path& file,
                                          const std::string& strSuffix);

/// Reads a whole plain file of at most nLargest bytes. Throws std::system_error.
std::string ReadFile(const std::filesystem::path& file, std::size_t nLargest);

} // namespace Tarvane
