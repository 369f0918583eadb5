// What a failure frees and what it keeps: every allocation fails in turn. With an allocator of the
// test's own.
#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <stdexcept>

namespace
{
constexpr int kNever = INT_MAX;
int nAllocationsLeft = kNever;
long nAlive = 0;

// True where this allocation is to fail.
bool CountDown()
{
    return nAllocationsLeft != kNever && nAllocationsLeft-- <= 0;
}

constexpr const char* kLongText = "a text of more than fifteen bytes";

// Blocks with siblings on several levels, so that every walk has to remember where it was.
void FillNested(CParameterBlock& root)
{
    CParameterBlock inner, middle;
    inner.AddParameter("Inner value", 1);
    inner.AddParameter("Inner text", kLongText);
    middle.AddParameter(kLongText, 2.0);
    middle.AddParameter("First inner", &inner);
    middle.AddParameter("Second inner", &inner);
    for (int i = 0; i < 3; ++i)
    {
        root.AddParameter("Middle", &middle);
        root.AddParameter("Value", i);
    }
}

// Runs the body with its first allocation failing, then the second, until none is left to fail;
// afterFailure looks at what is left, and then clean sets all back. Returns how many there were.
template <class Body, class AfterFailure, class Clean>
int FailEachAllocation(Body&& body, AfterFailure&& afterFailure, Clean&& clean)
{
    for (int nPoint = 0;; ++nPoint)
    {
        bool fFailed = false;
        const long nAliveBefore = nAlive;
        nAllocationsLeft = nPoint;
        try
        {
            body();
        }
        catch (const std::bad_alloc&)
        {
            fFailed = true;
        }
        nAllocationsLeft = kNever;
        if (fFailed)
            afterFailure(nPoint);
        clean();
        EXPECT_EQ(nAlive, nAliveBefore) << "failure " << nPoint;
        if (!fFailed)
            return nPoint;
    }
}

int FailEachAllocation(auto&& body)
{
    return FailEachAllocation(
        body, [](int) {}, [] {});
}
} // namespace

void* operator new(std::size_t nSize)
{
    void* p = CountDown() ? nullptr : std::malloc(nSize ? nSize : 1);
    if (!p)
        throw std::bad_alloc();
    ++nAlive;
    return p;
}

void operator delete(void* p) noexcept
{
    nAlive -= p != nullptr;
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    operator delete(p);
}

// Where slabs come from.
extern "C" int posix_memalign(void** ppMemory, std::size_t nAlignment, std::size_t nSize) noexcept
{
    using Function = int(void**, std::size_t, std::size_t);
    static auto* const pNext = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "posix_memalign"));
    return CountDown() ? 12 : pNext(ppMemory, nAlignment, nSize);
}

TEST(ParameterFailure, CopyUnderANameFreesWhatItHasCopied)
{
    CParameterBlock source;
    FillNested(source);
    EXPECT_GT(FailEachAllocation([&] { const CParameterBlock copy(kLongText, &source); }), 30);
}

TEST(ParameterFailure, CopyOfAParameterFreesWhatItHasCopied)
{
    CParameterBlock source;
    FillNested(source);
    CParameter* pSource = &source;
    EXPECT_GT(FailEachAllocation([&] { const CParameterBlock copy(pSource); }), 30);
}

TEST(ParameterFailure, AddedBlockIsFreedAndTheBlockStaysAsItWas)
{
    CParameterBlock source;
    FillNested(source);
    CParameterBlock target;
    target.AddParameter("Before", 1);
    const int nPoints = FailEachAllocation(
        [&] { target.AddParameter(kLongText, &source); },
        [&](int nPoint) { EXPECT_EQ(target.m_vParameters.size(), 1u) << nPoint; },
        [&]
        {
            for (; target.m_vParameters.size() > 1; target.m_vParameters.pop_back())
                delete target.m_vParameters.back();
            target.m_vParameters.shrink_to_fit();
        });
    EXPECT_GT(nPoints, 30);
}

TEST(ParameterFailure, AddedValueIsFreedAndTheBlockStaysAsItWas)
{
    const int nPoints = FailEachAllocation(
        []
        {
            CParameterBlock block;
            block.AddParameter(kLongText, kLongText);
        });
    EXPECT_EQ(nPoints, 4) << "parameter, name, value, list";
}

TEST(ParameterFailure, CopyFromSlabsFreesWhatItHasCopied)
{
    CParameterBlock source, nested;
    for (int i = 0; i < 3000; ++i)
        nested.AddParameter("V", i);
    for (int i = 0; i < 2; ++i)
        source.AddParameter("Nested", &nested);
    // In steps: each of the first thousand and more is an allocation of its own.
    const long nAliveBefore = nAlive;
    int nFailures = 0;
    for (int nPoint = 0; nPoint < 1100; ++nPoint)
    {
        nAllocationsLeft = nPoint;
        try
        {
            const CParameterBlock copy("N", &source);
        }
        catch (const std::bad_alloc&)
        {
            ++nFailures;
        }
        nAllocationsLeft = kNever;
        EXPECT_EQ(nAlive, nAliveBefore) << nPoint;
    }
    EXPECT_GT(nFailures, 1024) << "slabs failed, too";
    EXPECT_LT(nFailures, 1100);
}

TEST(ParameterFailure, CreateBlockFreesItsBuffer)
{
    CParameterBlock source;
    FillNested(source);
    unsigned char* pBuffer = nullptr;
    unsigned long nSize = 77;
    const int nPoints = FailEachAllocation([&] { pBuffer = source.CreateBlock(&nSize); },
                                           [&](int nPoint) { EXPECT_EQ(nSize, 77u) << nPoint; },
                                           [&] { delete[] pBuffer; });
    EXPECT_GT(nPoints, 2) << "walks allocate behind the buffer, too";
}

TEST(ParameterFailure, LoadKeepsTheEntriesReadBefore)
{
    CParameterBlock source;
    FillNested(source);
    ExactBuffer buffer(CreateBlock(source));
    CParameterBlock target;
    std::size_t nKeptLast = 0;
    FailEachAllocation([&] { target.LoadBlock(nullptr, buffer.Size(), buffer.Get()); },
                       [&](int nPoint)
                       {
                           const std::size_t nKept = target.m_vParameters.size();
                           ASSERT_LE(nKept, source.m_vParameters.size()) << nPoint;
                           for (std::size_t i = 0; i < nKept; ++i)
                               EXPECT_EQ(SaveFlat(*target.m_vParameters[i]),
                                         SaveFlat(*source.m_vParameters[i]));
                           EXPECT_GE(nKept, nKeptLast);
                           nKeptLast = nKept;
                       },
                       [&]
                       {
                           target.Clear();
                           target.m_vParameters.shrink_to_fit();
                       });
    EXPECT_EQ(nKeptLast, 5u) << "the last failure is that of the last entry";
}

TEST(ParameterFailure, CopyKeepsTheEntriesCopiedBefore)
{
    CParameterBlock source;
    FillNested(source);
    CParameterBlock target;
    std::size_t nKeptLast = 0;
    FailEachAllocation([&] { target.CopyParameters(&source); },
                       [&](int nPoint)
                       {
                           EXPECT_GE(target.m_vParameters.size(), nKeptLast) << nPoint;
                           nKeptLast = target.m_vParameters.size();
                       },
                       [&]
                       {
                           target.Clear();
                           target.m_vParameters.shrink_to_fit();
                       });
    EXPECT_EQ(nKeptLast, 5u);
}

TEST(ParameterFailure, SinkThatThrowsLeavesTheEntriesReadBefore)
{
    class CThrowing : public CProgress
    {
    public:
        bool Update(unsigned long) override
        {
            if (++nCalls == 7)
                throw std::runtime_error("no more");
            return false;
        }
        int nCalls = 0;
    };
    CParameterBlock source;
    FillNested(source);
    ExactBuffer buffer(CreateBlock(source));
    const long nAliveBefore = nAlive;
    {
        CThrowing sink;
        CParameterBlock target(&sink, buffer.Size());
        EXPECT_THROW(target.LoadBlock(nullptr, buffer.Size(), buffer.Get()), std::runtime_error);
        // Three calls for each of the outer blocks: the seventh comes from inside the third one.
        EXPECT_EQ(target.m_vParameters.size(), 4u);
    }
    EXPECT_EQ(nAlive, nAliveBefore);
}
