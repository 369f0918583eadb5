// Takes whose process is killed, at every instant of their end and of their recovery.
#include "signal/TakeWriter.h"

#include "tests/apps/support/FailingCalls.h"
#include "tests/signal/CoreUnderTest.h"
#include "tests/signal/FileSizeLimit.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <iterator>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

namespace
{

bool ChangesFiles(const __ptrace_syscall_info& call)
{
    constexpr long kChanges[] = {SYS_write,    SYS_pwrite64,  SYS_ftruncate, SYS_fsync,
#ifdef SYS_rename
                                 SYS_rename,   SYS_link,      SYS_unlink,
#endif
                                 SYS_renameat, SYS_renameat2, SYS_linkat,    SYS_unlinkat};
    const auto nCall = static_cast<long>(call.entry.nr);
    return (nCall == SYS_openat && (call.entry.args[2] & O_CREAT) != 0) ||
           std::find(std::begin(kChanges), std::end(kChanges), nCall) != std::end(kChanges);
}

// Work in a folder, which says when its last part begins.
using Begins = std::function<void()>;
using Work = std::function<void(const fs::path&, const Begins&)>;

// Does the work in a process of its own and kills that in front of the n-th system call of its
// last part, from 1, that changes a file. False when there are fewer.
bool KillsAtChange(int nChange, const fs::path& folder, const Work& work)
{
    const pid_t nChild = ::fork();
    if (nChild == 0)
    {
        work(folder,
             []
             {
                 ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
                 ::raise(SIGSTOP);
             });
        ::_exit(0);
    }
    int nStatus = 0;
    EXPECT_EQ(::waitpid(nChild, &nStatus, 0), nChild);
    EXPECT_TRUE(WIFSTOPPED(nStatus)) << "it ended before its last part";
    ::ptrace(PTRACE_SETOPTIONS, nChild, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (WIFSTOPPED(nStatus))
    {
        __ptrace_syscall_info call{};
        if (WSTOPSIG(nStatus) == (SIGTRAP | 0x80) &&
            ::ptrace(PTRACE_GET_SYSCALL_INFO, nChild, sizeof call, &call) > 0 &&
            call.op == PTRACE_SYSCALL_INFO_ENTRY && ChangesFiles(call) && --nChange == 0)
        {
            ::kill(nChild, SIGKILL);
        }
        ::ptrace(PTRACE_SYSCALL, nChild, nullptr, nullptr);
        ::waitpid(nChild, &nStatus, 0);
    }
    EXPECT_TRUE(nChange == 0 || (WIFEXITED(nStatus) && WEXITSTATUS(nStatus) == 0));
    return nChange == 0;
}

// The writer of one instance in a folder of its own, whoever runs it.
class TakeRecovery : public testing::TestWithParam<int>
{
protected:
    static constexpr const char* kInstance = "01234567-89ab-4cde-8f01-23456789abcd";
    static constexpr double kPlace = 50'000;
    static constexpr std::uint64_t kLength = 20'000;
    static constexpr std::uint64_t kFrameBytes = 2 * 3;
    static constexpr std::uint64_t kHeaderBytes = 4096; // and more than what goes with the samples
    // A block of a compressed file is as long as its encoder has it.
    static constexpr std::uint64_t kEncoderBlock = 8192;

    static std::unique_ptr<CTakeWriter> Writer(const fs::path& folder)
    {
        CTakeFormat format;
        format.nFileFormat = GetParam();
        // The hardest one: unfinished files are called so too.
        format.strStem = ".capture";
        auto pWriter = std::make_unique<CTakeWriter>(folder, kInstance, [](const std::string&) {});
        pWriter->SetFormat(format);
        return pWriter;
    }

    static void Write(CTakeWriter& writer, std::uint64_t nFrom)
    {
        std::vector<float> samples(2 * kLength);
        for (std::size_t n = 0; n < samples.size(); ++n)
        {
            samples[n] = SampleAt(static_cast<std::int64_t>(kPlace) +
                                      static_cast<std::int64_t>(nFrom + n / 2),
                                  static_cast<std::uint32_t>(n % 2));
        }
        writer.Write(samples.data(), kLength);
    }

    // Whether the header counts the frames only when the file is closed.
    static bool NeedsItsEnd() { return (GetParam() & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC; }

    static std::uintmax_t SizeOfLargest(const fs::path& folder)
    {
        std::uintmax_t nLargest = 0;
        for (const auto& entry : fs::directory_iterator(folder))
        {
            nLargest = std::max(nLargest, entry.file_size());
        }
        return nLargest;
    }

    static std::unique_ptr<CTakeWriter> Capturing(const fs::path& folder)
    {
        auto pWriter = Writer(folder);
        pWriter->Begin(0, kPlace);
        Write(*pWriter, 0);
        return pWriter;
    }

    // The next start, and the one behind that.
    static void ExpectOfferedOnceAndWhole(const CTemporaryFolder& folder,
                                          const std::string& strWhen)
    {
        SCOPED_TRACE(strWhen);
        {
            auto pNext = Writer(folder.Path());
            const auto found = pNext->Recover();
            ASSERT_THAT(found, SizeIs(1));
            CQueuedTake queued = found[0];
            const CTake& take = queued.take;
            EXPECT_EQ(take.dPosition, kPlace);
            EXPECT_GE(take.nFrames + kEncoderBlock, kLength);
            EXPECT_EQ(SamplesThatAreRight(take.file, kPlace), take.nFrames * 2);
            EXPECT_LT(fs::file_size(take.file), take.nFrames * kFrameBytes + kHeaderBytes)
                << "nothing behind the samples";
            EXPECT_THAT(folder.Files(),
                        ElementsAre(take.file.filename().string(),
                                    ".takes-" + std::string(kInstance) + ".journal"));
            EXPECT_THAT(take.file.filename().string(), testing::StartsWith(".capture-001."));
            EXPECT_THAT(pNext->Recover(), IsEmpty()) << "offered once";
            queued.take.outcome = TakeOutcome::Delivered;
            pNext->Settle(queued);
        }
        EXPECT_THAT(Writer(folder.Path())->Recover(), IsEmpty()) << "settled";
    }

    static void EndsATake(const fs::path& folder, const Begins& beginsLastPart)
    {
        auto pWriter = Capturing(folder);
        beginsLastPart();
        pWriter->End();
    }

    // Each time in a new folder; in the last one the work goes on to its end.
    static void KillAtEachChange(
        int nAtLeast, const Work& work,
        const std::function<void(const fs::path&)>& prepare = [](const fs::path&) {})
    {
        int nChange = 0;
        for (bool fKilled = true; fKilled;)
        {
            const CTemporaryFolder folder;
            prepare(folder.Path());
            fKilled = KillsAtChange(++nChange, folder.Path(), work);
            ExpectOfferedOnceAndWhole(folder, "in front of change " + std::to_string(nChange));
        }
        EXPECT_GE(nChange, nAtLeast);
    }
};

} // namespace

TEST_P(TakeRecovery, ATakeKilledAtAnyInstantOfAWriteIsOfferedOnceAndWhole)
{
    KillAtEachChange(4,
                     [](const fs::path& folder, const Begins& beginsLastPart)
                     {
                         auto pWriter = Capturing(folder);
                         beginsLastPart();
                         Write(*pWriter, kLength);
                         ::_exit(0);
                     });
}

TEST_P(TakeRecovery, ATakeKilledAtAnyInstantOfItsEndIsOfferedOnceAndWhole)
{
    KillAtEachChange(6, EndsATake);
}

TEST_P(TakeRecovery, ATakeThatAFullDiskCutsKilledAtAnyInstantOfItsEndIsOfferedOnceAndWhole)
{
    KillAtEachChange(3,
                     [](const fs::path& folder, const Begins& beginsLastPart)
                     {
                         auto pWriter = Capturing(folder);
                         const CFileSizeLimit full(SizeOfLargest(folder));
                         beginsLastPart();
                         const CTake take = pWriter->End().take;
                         pWriter->Lose(1);
                         ::_exit((take.state == TakeState::Failed) == NeedsItsEnd() ? 0 : 1);
                     });
}

TEST_P(TakeRecovery, WhatAFullDiskHasTakenFromATakeIsToldUntilAndAfterItIsMended)
{
    constexpr std::uint64_t kBehind = 7;
    const CTemporaryFolder folder;
    const CTakeJournal journal(folder.Path(), kInstance);
    const auto told = [&journal]
    {
        const auto losses = journal.Losses();
        EXPECT_THAT(losses, SizeIs(1));
        return losses.empty() ? CJournalTake() : losses.front();
    };
    {
        const auto pWriter = Capturing(folder.Path());
        const CFileSizeLimit full(SizeOfLargest(folder.Path()));
        pWriter->End();
        pWriter->Lose(kBehind);
    }
    EXPECT_EQ(told().fFinished, !NeedsItsEnd());
    EXPECT_EQ(told().nLostFrames, kBehind);
    EXPECT_EQ(told().nFrames, kLength);
    Writer(folder.Path())->Recover();
    EXPECT_TRUE(told().fFinished);
    EXPECT_EQ(told().nFrames + told().nLostFrames, kLength + kBehind);
    EXPECT_EQ(told().nFrames < kLength, NeedsItsEnd());
}

TEST_P(TakeRecovery, ALeftoverWhoseRecoveryIsKilledAtAnyInstantIsOfferedOnceAndWhole)
{
    KillAtEachChange(
        6,
        [](const fs::path& folder, const Begins& beginsLastPart)
        {
            auto pWriter = Writer(folder);
            beginsLastPart();
            pWriter->Recover();
        },
        [](const fs::path& folder) { EXPECT_TRUE(KillsAtChange(1, folder, EndsATake)); });
}

TEST_P(TakeRecovery, OfAFileSystemWithoutLinksGivesTheNameAllTheSame)
{
    const CTemporaryFolder folder;
    const CFailingCall fail("link", 1, EPERM);
    const CTake take = Capturing(folder.Path())->End().take;
    EXPECT_TRUE(fail.HasFailed());
    EXPECT_EQ(take.strFailure, "");
    ExpectOfferedOnceAndWhole(folder, "without links");
}

INSTANTIATE_TEST_SUITE_P(All, TakeRecovery,
                         testing::Values(0, SF_FORMAT_AIFF | SF_FORMAT_PCM_24,
                                         SF_FORMAT_FLAC | SF_FORMAT_PCM_24));
