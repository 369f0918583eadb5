#include "apps/conform/shared/WorkFolder.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <unistd.h> // mkdtemp, on macOS

namespace Tarvane::Conform
{

CWorkFolder::CWorkFolder()
{
    std::string strPath =
        (std::filesystem::temp_directory_path() / "tarvane-conform-XXXXXX").string();
    if (mkdtemp(strPath.data()) == nullptr)
        throw std::runtime_error("no folder can be made at " + strPath + ": " +
                                 std::strerror(errno) + "; set TMPDIR to one that can be written.");
    m_path = strPath;
}

CWorkFolder::~CWorkFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace Tarvane::Conform
