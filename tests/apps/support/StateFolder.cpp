// The index of journals goes to a folder of this program's own, not to the user's.
#include "tests/apps/support/TemporaryFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

namespace
{

class CStateFolder : public testing::Environment
{
    void SetUp() override
    {
        m_pFolder = std::make_unique<TarvaneTest::CTemporaryFolder>();
        ::setenv("XDG_STATE_HOME", m_pFolder->Path().c_str(), 1);
    }
    void TearDown() override { m_pFolder.reset(); }

    std::unique_ptr<TarvaneTest::CTemporaryFolder> m_pFolder;
};

[[maybe_unused]] const testing::Environment* const pStateFolder =
    testing::AddGlobalTestEnvironment(new CStateFolder);

} // namespace
