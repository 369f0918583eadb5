// A command processor on a session in memory, with sound files to work on.
#pragma once

#include "apps/server/command/CommandProcessor.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <string>

namespace TarvaneTest
{

class CommandFixture : public testing::Test
{
protected:
    std::string Path(const std::string& strName) const { return (m_folder / strName).string(); }

    std::string Result(const std::string& strScript)
    {
        const Tarvane::Server::CommandReply reply = m_processor.Run(strScript);
        EXPECT_EQ(reply.strError, "") << strScript;
        return reply.strResult;
    }

    std::string Error(const std::string& strScript)
    {
        const Tarvane::Server::CommandReply reply = m_processor.Run(strScript);
        EXPECT_EQ(reply.strResult, "") << strScript;
        return reply.strError;
    }

    Tarvane::Server::CRenderFolder RenderFolder() const
    {
        return Tarvane::Server::CRenderFolder(m_folder / "made");
    }

    /// The same with the script document selected.
    std::string SelectedResult(const std::string& strScript)
    {
        return Result("SelectScriptDocument() " + strScript);
    }
    std::string SelectedError(const std::string& strScript)
    {
        return Error("SelectScriptDocument() " + strScript);
    }

    Tarvane::Server::Document GetDocument(Tarvane::Server::DocumentKind kind)
    {
        return m_database.Content().GetDocument(kind);
    }
    Tarvane::Server::Document ScriptDocument()
    {
        return GetDocument(Tarvane::Server::DocumentKind::Script);
    }

    CTemporaryFolder m_folder;
    const std::string m_strTake = MakeSound(m_folder / "take.wav", Noise(100));
    Tarvane::Server::CSessionDatabase m_database{Tarvane::Server::CSession({"Vox", "Guitar"}, 0.1)};
    Tarvane::Server::CCommandProcessor m_processor{m_database, RenderFolder(), true};
};

} // namespace TarvaneTest
