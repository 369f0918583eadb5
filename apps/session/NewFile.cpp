#include "apps/session/NewFile.h"

#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"

#include <iostream>
#include <system_error>

namespace Tarvane::Session
{

void WriteNew(const std::filesystem::path& file, const std::string& strText)
{
    if (file.empty())
    {
        std::cout << strText;
        return;
    }
    try
    {
        if (std::filesystem::exists(std::filesystem::symlink_status(file)))
            throw CUsageError(file.string() + " is there already; name another file.");
        ReplaceFile(file, strText);
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

} // namespace Tarvane::Session
