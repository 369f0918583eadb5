// With a CFileIO of the test's own in place of the real one: what happens when a file changes its
// mind, and in what order the file is used.
#include "tests/utils/ParameterHelpers.h"
#include "utils/FileIO/FileExceptions.h"
#include "utils/FileIO/FileIO.h"
#include "utils/FileIO/FileName.h"
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace
{
struct Script
{
    unsigned long nLength = 0;
    std::string bytes;
    std::string failAt; // The operation that raises a file failure.
    bool fForeign = false;
    std::vector<std::string> calls;
    int nAlive = 0;
    std::string written;

    void Call(const std::string& strCall)
    {
        calls.push_back(strCall);
        if (strCall.substr(0, strCall.find(' ')) != failAt)
            return;
        if (fForeign)
            throw std::runtime_error("not a file failure");
        throw CFileIOException("file", CFileIOException::kSetPosition, 1, __FILE__, __LINE__);
    }
};
Script script;
bool fNoBuffer = false;

class BinarySessionScripted : public testing::Test
{
protected:
    void SetUp() override
    {
        script = Script();
        m_root.AddParameter("Mod", 7);
    }
    void TearDown() override { EXPECT_EQ(script.nAlive, 0) << "the file object is freed"; }

    CParameterBlock m_root;
    CFileName m_name{"file"};
};
} // namespace

// What a load asks for its buffer.
void* operator new[](std::size_t nSize, const std::nothrow_t&) noexcept
{
    return fNoBuffer ? nullptr : ::operator new[](nSize);
}

CFileIO::CFileIO()
{
    ++script.nAlive;
}
CFileIO::~CFileIO()
{
    --script.nAlive;
}
void CFileIO::Open(const CFileName*, bool fWrite, bool fCreate)
{
    script.Call(std::string("Open ") + (fWrite ? "write " : "read ") +
                (fCreate ? "create" : "keep"));
}
void CFileIO::Close()
{
    script.calls.push_back("Close");
}
bool CFileIO::IsOpen() const
{
    return true;
}
unsigned long CFileIO::GetLength()
{
    script.Call("GetLength");
    return script.nLength;
}
unsigned long CFileIO::Read(unsigned long nCount, unsigned char* pTarget)
{
    script.Call("Read " + std::to_string(nCount));
    const std::size_t nRead = std::min<std::size_t>(nCount, script.bytes.size());
    std::copy_n(script.bytes.begin(), nRead, pTarget);
    return nRead;
}
unsigned long CFileIO::Write(unsigned long nCount, const unsigned char* pSource)
{
    script.Call("Write " + std::to_string(nCount));
    script.written.assign(reinterpret_cast<const char*>(pSource), nCount);
    return nCount / 2;
}

// Nothing here calls these; they complete the class.
int CFileIO::SetPosition(unsigned long)
{
    return 0;
}
unsigned long CFileIO::GetPosition()
{
    return 0;
}
unsigned long CFileIO::WriteString(const char*, bool)
{
    return 0;
}
int CFileIO::PreAllocate(long)
{
    return 0;
}
int CFileIO::SetFileCreatorType(const CFileName*, unsigned long, unsigned long)
{
    return 0;
}

TEST_F(BinarySessionScripted, SaveOpensWritesAndCloses)
{
    const std::string bytes = SaveSession(m_root);
    EXPECT_EQ(m_root.SaveBinarySession(&m_name), 0) << "a short write is not looked at";
    EXPECT_EQ(script.calls,
              (std::vector<std::string>{"Open write create",
                                        "Write " + std::to_string(bytes.size()), "Close"}));
    EXPECT_EQ(script.written, bytes);
}

TEST_F(BinarySessionScripted, SaveDropsFileFailures)
{
    for (const char* pOperation : {"Open", "Write"})
    {
        script.failAt = pOperation;
        EXPECT_EQ(m_root.SaveBinarySession(&m_name), 2035);
    }
}

TEST_F(BinarySessionScripted, SaveLetsOtherFailuresPass)
{
    script.failAt = "Write";
    script.fForeign = true;
    EXPECT_THROW(m_root.SaveBinarySession(&m_name), std::runtime_error);
}

TEST_F(BinarySessionScripted, LoadOpensMeasuresReadsAndCloses)
{
    script.bytes = SaveSession(m_root);
    script.nLength = script.bytes.size();
    CParameterBlock loaded;
    EXPECT_EQ(loaded.LoadBinarySession(&m_name), 0);
    EXPECT_EQ(loaded.m_vParameters.size(), 1u);
    EXPECT_EQ(script.calls,
              (std::vector<std::string>{"Open read keep", "GetLength",
                                        "Read " + std::to_string(script.bytes.size()), "Close"}));
}

TEST_F(BinarySessionScripted, FileThatShrinksGives2035AndChangesNothing)
{
    script.bytes = SaveSession(m_root);
    script.nLength = script.bytes.size() + 1;
    EXPECT_EQ(m_root.LoadBinarySession(&m_name), 2035);
    EXPECT_EQ(m_root.m_vParameters.size(), 1u);
    EXPECT_EQ(script.calls.back(), "Close");
}

TEST_F(BinarySessionScripted, FileThatNoBufferCanHoldGives2AndChangesNothing)
{
    script.nLength = 10;
    fNoBuffer = true;
    const int nResult = m_root.LoadBinarySession(&m_name);
    fNoBuffer = false;
    EXPECT_EQ(nResult, 2);
    EXPECT_EQ(m_root.m_vParameters.size(), 1u);
    EXPECT_EQ(script.calls, (std::vector<std::string>{"Open read keep", "GetLength", "Close"}));
}

TEST_F(BinarySessionScripted, LengthIsCutTo32Bits)
{
    script.bytes = SaveSession(m_root);
    script.nLength = 0x700000000 + script.bytes.size();
    CParameterBlock loaded;
    EXPECT_EQ(loaded.LoadBinarySession(&m_name), 0);
    EXPECT_EQ(loaded.m_vParameters.size(), 1u);

    script.calls.clear();
    script.nLength = 0x100000000;
    EXPECT_EQ(loaded.LoadBinarySession(&m_name), 0) << "nothing is left of the length";
    EXPECT_EQ(script.calls, (std::vector<std::string>{"Open read keep", "GetLength", "Close"}));
    EXPECT_EQ(loaded.m_vParameters.size(), 1u);
}

TEST_F(BinarySessionScripted, LoadDropsFileFailures)
{
    script.nLength = 10;
    for (const char* pOperation : {"Open", "GetLength", "Read"})
    {
        script.failAt = pOperation;
        EXPECT_EQ(m_root.LoadBinarySession(&m_name), 2035);
        EXPECT_EQ(m_root.m_vParameters.size(), 1u);
    }
}

TEST_F(BinarySessionScripted, LoadLetsOtherFailuresPass)
{
    script.failAt = "GetLength";
    script.fForeign = true;
    EXPECT_THROW(m_root.LoadBinarySession(&m_name), std::runtime_error);
}
