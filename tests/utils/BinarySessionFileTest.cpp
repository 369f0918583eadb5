#include "tests/utils/ParameterHelpers.h"
#include "utils/FileIO/FileName.h"
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
class BinarySessionFile : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "session.XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
        m_root.AddParameter("Mod", 7);
        m_nOpen = CountOpenFiles();
    }
    void TearDown() override
    {
        EXPECT_EQ(CountOpenFiles(), m_nOpen) << "no file is left open";
        std::filesystem::remove_all(m_folder);
    }

    static std::ptrdiff_t CountOpenFiles()
    {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }

    std::string PathOf(const std::string& name) const { return (m_folder / name).string(); }
    static std::string Read(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void Write(const std::string& path, const std::string& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static int Save(CParameterBlock& block, const std::string& path)
    {
        CFileName name(path.c_str());
        return block.SaveBinarySession(&name);
    }
    static int Load(CParameterBlock& block, const std::string& path)
    {
        CFileName name(path.c_str());
        return block.LoadBinarySession(&name);
    }

    std::filesystem::path m_folder;
    CParameterBlock m_root;
    std::ptrdiff_t m_nOpen = 0;
};

// Permissions bind everybody while this lives, the superuser too.
class CAnybody
{
public:
    CAnybody() { EXPECT_EQ(seteuid(m_nUser == 0 ? kNobody : m_nUser), 0); }
    ~CAnybody() { EXPECT_EQ(seteuid(m_nUser), 0); }

private:
    static constexpr uid_t kNobody = 65534;
    const uid_t m_nUser = geteuid();
};
} // namespace

TEST_F(BinarySessionFile, SavesWithoutTheSpareBytesAndLoads)
{
    CParameterBlock code, root, loaded;
    code.AddParameter("Mod", 9);
    root.AddParameter("Mod", 7);
    root.AddParameter("Code", &code);
    const std::string path = PathOf("example.session");
    EXPECT_EQ(Save(root, path), 0);
    EXPECT_EQ(Read(path).size(), 79u);
    EXPECT_EQ(Read(path), SaveSession(root));
    EXPECT_EQ(Load(loaded, path), 0);
    EXPECT_EQ(CreateBlock(loaded), CreateBlock(root));
}

TEST_F(BinarySessionFile, SaveReplacesALongerFile)
{
    const std::string path = PathOf("file");
    Write(path, std::string(5000, 'x'));
    EXPECT_EQ(Save(m_root, path), 0);
    EXPECT_EQ(Read(path), SaveSession(m_root));
}

TEST_F(BinarySessionFile, TreeWithoutNamesTouchesNoFile)
{
    CParameterBlock root;
    root.AddParameter("", 1);
    EXPECT_EQ(Save(root, PathOf("new")), 2035);
    EXPECT_FALSE(std::filesystem::exists(PathOf("new")));
    Write(PathOf("old"), "old");
    EXPECT_EQ(Save(root, PathOf("old")), 2035);
    EXPECT_EQ(Read(PathOf("old")), "old");
}

TEST_F(BinarySessionFile, SaveWhereNoFileCanBeOpenedGives2035)
{
    Write(PathOf("file"), "x");
    EXPECT_EQ(Save(m_root, m_folder.string()), 2035) << "a folder";
    EXPECT_EQ(Save(m_root, PathOf("none/file")), 2035) << "a folder that is not there";
    EXPECT_EQ(Save(m_root, PathOf("file/file")), 2035) << "a file taken for a folder";
    EXPECT_EQ(Save(m_root, PathOf(std::string(300, 'n'))), 2035) << "a name too long";
    EXPECT_EQ(Save(m_root, "/proc/self/exe"), 2035) << "a running program, read-only for all";
}

TEST_F(BinarySessionFile, SaveIntoAReadOnlyFolderGives2035)
{
    EXPECT_EQ(Save(m_root, PathOf("old")), 0);
    const std::string bytes = Read(PathOf("old"));
    ASSERT_EQ(chmod(PathOf("old").c_str(), 0444), 0);
    ASSERT_EQ(chmod(m_folder.c_str(), 0555), 0);
    {
        const CAnybody anybody;
        EXPECT_EQ(Save(m_root, PathOf("new")), 2035);
        EXPECT_EQ(Save(m_root, PathOf("old")), 2035);
        CParameterBlock loaded;
        EXPECT_EQ(Load(loaded, PathOf("old")), 0) << "reading needs no more";
    }
    ASSERT_EQ(chmod(m_folder.c_str(), 0755), 0);
    EXPECT_FALSE(std::filesystem::exists(PathOf("new")));
    EXPECT_EQ(Read(PathOf("old")), bytes);
}

TEST_F(BinarySessionFile, SaveToAFullDiskIsNotNoticed)
{
    // The written count is not looked at, nor is the close: a caller has to read the file back.
    EXPECT_EQ(Save(m_root, "/dev/full"), 0);
    CParameterBlock large;
    const std::string text(100000, 'x');
    large.AddParameter("Text", text.c_str());
    EXPECT_EQ(Save(large, "/dev/full"), 0);
}

TEST_F(BinarySessionFile, MissingFileGives2035AndChangesNothing)
{
    EXPECT_EQ(Load(m_root, PathOf("none")), 2035);
    EXPECT_EQ(m_root.m_vParameters.size(), 1u);
}

TEST_F(BinarySessionFile, FolderIsNoSession)
{
    // What length a folder claims differs between file systems: none, or more than there is memory
    // for. Its bytes cannot be read in either case.
    for (const std::string& path : {m_folder.string(), std::string("/proc/self")})
    {
        const int nResult = Load(m_root, path);
        EXPECT_TRUE(nResult == 2035 || nResult == 2 || nResult == 0) << nResult;
        EXPECT_EQ(m_root.m_vParameters.size(), 1u);
    }
}

TEST_F(BinarySessionFile, EmptyFileLoadsAndChangesNothing)
{
    Write(PathOf("empty"), "");
    EXPECT_EQ(Load(m_root, PathOf("empty")), 0);
    EXPECT_EQ(m_root.m_vParameters.size(), 1u);
}

TEST_F(BinarySessionFile, BadHeaderAndBadRecordsComeThrough)
{
    Write(PathOf("short"), "[TNE");
    EXPECT_EQ(Load(m_root, PathOf("short")), 7534);
    EXPECT_EQ(m_root.m_vParameters.size(), 1u);
    const std::string bytes = SaveSession(m_root);
    Write(PathOf("cut"), bytes.substr(0, bytes.size() - 6));
    EXPECT_EQ(Load(m_root, PathOf("cut")), 2033);
    EXPECT_TRUE(m_root.m_vParameters.empty());
}
