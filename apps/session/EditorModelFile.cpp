#include "apps/session/EditorModelFile.h"

#include "apps/editor/SessionModel.h"
#include "apps/session/SessionFile.h"
#include "apps/support/program/CommandLine.h"

namespace Tarvane::Session
{

Editor::Model LoadModel(const std::filesystem::path& path)
{
    // The reader takes what is broken off or damaged for what it seems to be.
    if (const auto flaw = ScanAnnounced(path, ReadSessionBytes(path)).flaw)
        throw CUsageError(path.string() + " is damaged: " + FlawText(*flaw) +
                          ". Nothing was written.");
    const LoadedSession session = LoadSession(path);
    try
    {
        return Editor::ReadModel(*session.pRoot);
    }
    catch (const CUsageError& error)
    {
        throw CUsageError(path.string() + ": " + error.what());
    }
}

} // namespace Tarvane::Session
