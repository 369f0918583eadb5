// One fuzz target's corpus, and every bit of it turned and every end of it cut off. The sanitizers
// and the target's own rules end the program where something is wrong; what was run is told then.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize);
// Not there in a build without sanitizers.
extern "C" [[gnu::weak]] void __sanitizer_set_death_callback(void (*pCallback)());

namespace
{

char running[512] = "";

void TellWhatWasRun()
{
    [[maybe_unused]] const ssize_t nWritten = write(STDERR_FILENO, running, std::strlen(running));
}

void OnAbort(int)
{
    TellWhatWasRun();
    std::signal(SIGABRT, SIG_DFL);
    std::raise(SIGABRT);
}

void RunTarget(const std::string& bytes, const std::string& strEntry, const char* szChange,
               std::size_t nWhere)
{
    std::snprintf(running, sizeof running, "broken by %s/%s, %s %zu\n", CORPUS_FOLDER,
                  strEntry.c_str(), szChange, nWhere);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

struct Entry
{
    std::string strName;
    std::string bytes;
};

std::vector<Entry> Entries()
{
    std::signal(SIGABRT, OnAbort);
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(TellWhatWasRun);
    std::vector<Entry> entries;
    for (const auto& file : std::filesystem::directory_iterator(CORPUS_FOLDER))
    {
        std::ifstream content(file.path(), std::ios::binary);
        entries.push_back(
            {file.path().filename().string(), {std::istreambuf_iterator<char>(content), {}}});
    }
    EXPECT_GE(entries.size(), 4u) << "a corpus of flawed and sound inputs";
    return entries;
}

} // namespace

TEST(CORPUS_SUITE, EveryEntry)
{
    for (const Entry& entry : Entries())
        RunTarget(entry.bytes, entry.strName, "whole", entry.bytes.size());
}

TEST(CORPUS_SUITE, EveryEntryCutOffAnywhere)
{
    for (const Entry& entry : Entries())
    {
        for (std::size_t nKept = 0; nKept < entry.bytes.size(); ++nKept)
            RunTarget(entry.bytes.substr(0, nKept), entry.strName, "cut off at byte", nKept);
    }
}

TEST(CORPUS_SUITE, EveryEntryWithAnyBitTurned)
{
    for (const Entry& entry : Entries())
    {
        std::string bytes = entry.bytes;
        for (std::size_t nBit = 0; nBit < bytes.size() * 8; ++nBit)
        {
            const char cMask = static_cast<char>(1 << nBit % 8);
            bytes[nBit / 8] = static_cast<char>(bytes[nBit / 8] ^ cMask);
            RunTarget(bytes, entry.strName, "with bit", nBit);
            bytes[nBit / 8] = static_cast<char>(bytes[nBit / 8] ^ cMask);
        }
    }
}
