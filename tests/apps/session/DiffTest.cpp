#include "apps/session/Diff.h"

#include "tests/utils/ParameterHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

using namespace Tarvane::Session;

namespace
{

struct Trees
{
    CParameterBlock first, second;

    void ExpectDiff(const std::string& strLines)
    {
        std::ostringstream out;
        const std::size_t nDifferences = Diff(first, second, out);
        EXPECT_EQ(out.str(), strLines);
        EXPECT_EQ(nDifferences,
                  static_cast<std::size_t>(std::count(strLines.begin(), strLines.end(), '\n')));
    }
};

} // namespace

TEST(SessionDiff, SameTreesDoNotDiffer)
{
    Trees trees;
    trees.first.AddParameter("A", &trees.first);
    trees.first.AddParameter("N", std::nan(""));
    trees.second = trees.first;
    trees.ExpectDiff("");
}

TEST(SessionDiff, ValuesAndTypes)
{
    Trees trees;
    trees.first.AddParameter("A", 1);
    trees.second.AddParameter("A", 2);
    trees.first.AddParameter("B", 1);
    trees.second.AddParameter("B", 1ll);
    trees.first.AddParameter("C", 0.0);
    trees.second.AddParameter("C", -0.0);
    trees.first.AddParameter("D", "x");
    trees.second.AddParameter("D", &trees.first);
    trees.ExpectDiff("~ A = int 1 -> int 2\n"
                     "~ B = int 1 -> int64 1\n"
                     "~ C = double 0 -> double -0\n"
                     "~ D = string \"x\" -> block 4 entries\n");
}

TEST(SessionDiff, EntriesOfOneTreeAlone)
{
    Trees trees;
    trees.first.AddParameter("A", 1);
    trees.first.AddParameter("A", 2);
    trees.second.AddParameter("A", 1);
    trees.second.AddParameter("C", true);
    trees.ExpectDiff("- A[1] = int 2\n+ C = bool true\n");
}

TEST(SessionDiff, DeepInTheTree)
{
    Trees trees;
    CParameterBlock inner;
    trees.first.AddParameter("B", &inner);
    trees.second.AddParameter("B", &inner);
    inner.AddParameter("V", 1);
    trees.first.AddParameter("B", &inner);
    At<CIntParameter>(inner, 0).m_nValue = 2;
    trees.second.AddParameter("B", &inner);
    trees.ExpectDiff("~ B[1]/V = int 1 -> int 2\n");
}

TEST(SessionDiff, OrderAlone)
{
    Trees trees;
    trees.first.AddParameter("A", 1);
    trees.first.AddParameter("B", 2);
    trees.second.AddParameter("B", 2);
    trees.second.AddParameter("A", 1);
    trees.ExpectDiff("^ /\n");
}

TEST(SessionDiff, RootName)
{
    Trees trees;
    trees.first.m_strName = "One";
    trees.ExpectDiff("~ / is named \"One\" -> \"\"\n");
}

TEST(SessionDiff, DepthCostsNoCallStack)
{
    Bytes bytes;
    bytes.U32(1);
    for (int i = 0; i < 100000; ++i)
        bytes.U32(6).U32(0).U32(1);
    Trees trees;
    LoadBlock(trees.first, bytes.Get() + Bytes().U32(7).U32(0).U8(1).Get());
    LoadBlock(trees.second, bytes.Get() + Bytes().U32(7).U32(0).U8(0).Get());
    std::ostringstream out;
    EXPECT_EQ(Diff(trees.first, trees.second, out), 1u);
}
