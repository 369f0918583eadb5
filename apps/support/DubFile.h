// The file that a capture writes.
#pragma once

#include "apps/support/SoundFile.h"

#include <filesystem>
#include <string>

namespace Tarvane
{

// Written under a hidden temporary name; it gets its own name only once every sample is on the
// disk. What is not published is removed. One thread at a time.
//
// Container and sample form are those of the source, so the samples are the same bit for bit. A
// lossy form cannot be written again unchanged: what it decodes to is kept as 32-bit float WAV.
class CDubFile
{
public:
    // Throws CUsageError when the folder cannot be written or the path of the dub would not fit the
    // record in which it is published or could not be named in a script.
    CDubFile(const std::filesystem::path& folder, const CSoundReader& source);
    ~CDubFile();
    CDubFile(const CDubFile&) = delete;
    CDubFile& operator=(const CDubFile&) = delete;

    // Throws std::runtime_error when the disk takes no more.
    void Write(const CSampleBlock& block, size_t nFrames);

    // Gives the file the first free name "<source>-<number>.<extension>", never one that exists,
    // and returns its absolute path. Throws std::runtime_error as above. Nothing may be written
    // afterwards.
    std::filesystem::path Publish();

    // Throw CUsageError as the constructor does, and touch nothing. The first looks at the path of
    // a source's dub, whether or not the folder is there; the second at the folder.
    static void CheckPath(const std::filesystem::path& folder, const CSoundReader& source);
    static void CheckFolder(const std::filesystem::path& folder);

private:
    std::filesystem::path FreeName() const;
    [[noreturn]] void ThrowFull() const;

    std::filesystem::path m_folder;
    std::string m_strStem;
    std::string m_strExtension;
    std::filesystem::path m_temporary;
    int m_nFile = -1;
    SoundFileHandle m_pFile;
};

} // namespace Tarvane
