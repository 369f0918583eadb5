#include "utils/FileIO/StringHelpers.h"

#include "tests/utils/FileIO/ScratchFolder.h"

#include <clocale>
#include <cstdlib>

namespace
{

// Latin-5, where the byte E4 is the lower case of the byte C4.
class Latin5 : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string strCommand = "localedef -i en_US -f ISO-8859-9 --no-archive " +
                                       m_folder.Path("latin5") + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(strCommand.c_str()), 0) << "needs the package \"locales\"";
        setenv("LOCPATH", m_folder.Path().c_str(), 1);
        ASSERT_NE(std::setlocale(LC_CTYPE, "latin5"), nullptr);
    }

    void TearDown() override
    {
        std::setlocale(LC_CTYPE, "C");
        unsetenv("LOCPATH");
    }

    ScratchFolder m_folder;
    const unsigned char m_upper[2] = {1, 0xc4};
    const unsigned char m_lower[2] = {1, 0xe4};
};

} // namespace

TEST_F(Latin5, PstrcmpiFoldsAsTheLocaleDoes)
{
    EXPECT_EQ(pstrcmpi(m_upper, m_lower), 0);
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(pstrcmpi(m_upper, m_lower), -1);
}

TEST_F(Latin5, PstrcmpiComparesSignedAfterFolding)
{
    const unsigned char letter[] = {1, 'z'};
    EXPECT_EQ(pstrcmpi(m_upper, letter), -1);
}

TEST_F(Latin5, PStringEndCompareFoldsAsTheLocaleDoes)
{
    EXPECT_TRUE(PStringEndCompare(m_upper, m_lower));
    std::setlocale(LC_CTYPE, "C");
    EXPECT_FALSE(PStringEndCompare(m_upper, m_lower));
}

TEST_F(Latin5, PStringEndCompareFoldsToUpperCaseAndPstrcmpiToLower)
{
    // A dotless i has a capital in common with i, and a dotted capital I its small letter.
    const unsigned char dotless[] = {1, 0xfd};
    const unsigned char dotted[] = {1, 0xdd};
    const unsigned char plain[] = {1, 'i'};
    EXPECT_TRUE(PStringEndCompare(dotless, plain));
    EXPECT_NE(pstrcmpi(dotless, plain), 0);
    EXPECT_FALSE(PStringEndCompare(dotted, plain));
    EXPECT_EQ(pstrcmpi(dotted, plain), 0);
}

TEST_F(Latin5, PstrcmpDoesNotCareForTheLocale)
{
    EXPECT_EQ(pstrcmp(m_upper, m_lower), -1);
}
