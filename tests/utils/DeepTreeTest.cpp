// Trees that no call stack would hold, on a thread with hardly any.
#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <memory>

namespace
{
constexpr int kDepth = 1000000;
constexpr std::size_t kStackSize = std::size_t{256} * 1024;

void RunOnASmallStack(const std::function<void()>& body)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackSize), 0);
    pthread_t thread;
    const auto entry = [](void* pBody) -> void*
    {
        (*static_cast<const std::function<void()>*>(pBody))();
        return nullptr;
    };
    ASSERT_EQ(
        pthread_create(&thread, &attributes, entry, const_cast<std::function<void()>*>(&body)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// Blocks nested kDepth deep. fSiblings: each has a value in front of its nested block and one
// behind, so that every level has something left to do.
std::string DeepSession(bool fSiblings)
{
    const std::string value = Bytes().U32(7).U8(2).U8(1);
    Bytes bytes;
    bytes.Magic().U32(100).U32(4).U32(2).Text(std::string_view("B\0V\0", 4)).U8(0);
    bytes.U32(1);
    for (int i = 0; i < kDepth; ++i)
    {
        const bool fInnermost = i == kDepth - 1;
        bytes.U32(6).U8(1).U32((fInnermost ? 0 : 1) + (fSiblings ? 2 : 0));
        if (fSiblings)
            bytes.Text(value);
    }
    for (int i = 0; fSiblings && i < kDepth; ++i)
        bytes.Text(value);
    return bytes;
}

void GoThrough(bool fSiblings)
{
    const std::string bytes = DeepSession(fSiblings);
    RunOnASmallStack(
        [&]
        {
            auto pLoaded = std::make_unique<CParameterBlock>();
            ASSERT_EQ(LoadSession(*pLoaded, bytes), 0);
            EXPECT_EQ(pLoaded->GetSize(), bytes.size() - 42);
            EXPECT_TRUE(SaveFlat(*pLoaded) == bytes.substr(42)) << "saved again byte for byte";

            CParameterBlock copy;
            copy.CopyParameters(pLoaded.get());
            pLoaded.reset();
            CParameterBlock* pNested = nullptr;
            EXPECT_TRUE(copy.FindParameter("B", &pNested));
            std::map<std::string, int> map;
            copy.TokenizeNames(map);
            EXPECT_EQ(map["B"], kDepth);
            // In the siblings' tree V is used more than B, and the order of the names turns round.
            const std::string saved = SaveSession(copy);
            EXPECT_EQ(saved.size(), fSiblings ? bytes.size() : bytes.size() - 2);
            CParameterBlock again;
            EXPECT_EQ(LoadSession(again, saved), 0);
            EXPECT_TRUE(CreateBlock(again) == CreateBlock(copy));
            again = copy;
            copy.Clear();
            EXPECT_EQ(again.m_vParameters.size(), 1u);
        });
}
} // namespace

TEST(DeepTree, OnlyChildrenLoadSaveCopyAndDie)
{
    GoThrough(false);
}

TEST(DeepTree, ChildrenWithSiblingsLoadSaveCopyAndDie)
{
    GoThrough(true);
}

TEST(DeepTree, InlineNamesGoAsDeep)
{
    Bytes bytes;
    bytes.U32(1);
    for (int i = 0; i < kDepth; ++i)
        bytes.U32(6).Counted("B").U32(i == kDepth - 1 ? 0 : 1);
    RunOnASmallStack(
        [&]
        {
            CParameterBlock root;
            ASSERT_EQ(LoadBlock(root, bytes), static_cast<long>(bytes.Get().size()));
            EXPECT_TRUE(CreateBlock(root) == bytes.Get());
        });
}

TEST(DeepTree, CutInTheMiddleItFailsAndDies)
{
    const std::string bytes = DeepSession(true);
    RunOnASmallStack(
        [&]
        {
            CParameterBlock root;
            EXPECT_EQ(LoadSession(root, bytes.substr(0, bytes.size() / 2)), 2033);
            EXPECT_TRUE(root.m_vParameters.empty());
        });
}

TEST(DeepTree, BuiltByHandItDies)
{
    RunOnASmallStack(
        []
        {
            CParameterBlock root;
            CParameterBlock* pInnermost = &root;
            for (int i = 0; i < kDepth; ++i)
            {
                auto* pNew = new CParameterBlock;
                pInnermost->m_vParameters.push_back(pNew);
                if (i % 3 == 0)
                    pInnermost->AddParameter("V", i);
                pInnermost = pNew;
            }
        });
}
