#include "tests/apps/server/sandbox/ScriptRuns.h"

#include <gmock/gmock.h>

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

TEST(LuaLibraries, GlobalsAreTheseAndNoOthers)
{
    EXPECT_EQ(Output("local names = {} for name in pairs(_G) do names[#names + 1] = name end "
                     "table.sort(names) print(table.concat(names, ' '))"),
              "_G _VERSION assert error ipairs math next pairs pcall print rawequal rawget rawlen "
              "rawset select string table tonumber tostring type\n");
}

TEST(LuaLibraries, WhatReachesOutsideIsNotThere)
{
    for (const char* szName : {"io", "os", "package", "require", "debug", "load", "loadstring",
                               "loadfile", "dofile", "collectgarbage", "setmetatable",
                               "getmetatable", "coroutine", "xpcall", "warn", "string.dump"})
        EXPECT_EQ(Output(std::string("print(") + szName + ")"), "nil\n") << szName;
}

TEST(LuaLibraries, TheUsualFunctionsWork)
{
    EXPECT_EQ(Output("print(string.format('%05.1f|%s', 3.14159, 'x'), ('abc'):upper(), #'abc')"),
              "003.1|x\tABC\t3\n");
    EXPECT_EQ(Output("local t = {3, 1, 2} table.sort(t) print(table.concat(t, ','))"), "1,2,3\n");
    EXPECT_EQ(Output("local t = {3, 1, 2} table.sort(t, function(a, b) return a > b end) "
                     "print(table.concat(t, ','))"),
              "3,2,1\n");
    EXPECT_EQ(Output("print(math.floor(2.7), math.max(1, 5), math.pi > 3)"), "2\t5\ttrue\n");
    EXPECT_EQ(Output("print(('key = value'):match('(%w+) = (%w+)'))"), "key\tvalue\n");
    EXPECT_EQ(Output("print(('hello'):gsub('l', 'L'))"), "heLLo\t2\n");
    EXPECT_EQ(Output("print(('hello'):gsub('l', {l = 'r'}), 1)"), "herro\t1\n");
    EXPECT_EQ(Output("for k, v in ('a=1, b=2'):gmatch('(%w+)=(%w+)') do print(k, v) end"),
              "a\t1\nb\t2\n");
    EXPECT_EQ(Output("print(('a.b'):find('.', 1, true), ('ab'):rep(2, '-'))"), "2\tab-ab\n");
    EXPECT_EQ(Output("print(table.unpack(table.move({1, 2, 3}, 2, 3, 1)))"), "2\t3\t3\n");
    EXPECT_EQ(Output("print(pcall(error, 'x', 0))"), "false\tx\n");
    EXPECT_EQ(Output("print(pcall(function(a) return a, 2 end, 1))"), "true\t1\t2\n");
}

TEST(LuaLibraries, ArgumentErrorsNameTheFunctionAsUsual)
{
    EXPECT_THAT(Error("string.rep()"), HasSubstr("bad argument #1 to 'rep'"));
    EXPECT_THAT(Error("string.find('a')"), HasSubstr("bad argument #2 to 'find'"));
    EXPECT_THAT(Error("table.sort(1)"), HasSubstr("bad argument #1 to 'sort'"));
    EXPECT_THAT(Error("pcall()"), HasSubstr("bad argument #1 to 'pcall'"));
    EXPECT_THAT(Error("tostring()"), HasSubstr("bad argument #1 to 'tostring'"));
}

// Calls that would keep the server busy for hours without an instruction being counted.

constexpr const char* szTooLong =
    "could take more than 100000000 steps here: use a simpler pattern or fewer data";

TEST(LuaLibraryGuards, PatternsThatCouldTakeForEver)
{
    const std::string strText = "local s = ('a'):rep(40) ";
    const std::string strPattern = "('a-'):rep(20) .. 'b'";
    for (const std::string& strCall :
         {"s:find(" + strPattern + ")", "s:match(" + strPattern + ")",
          "s:gmatch(" + strPattern + ")()", "s:gsub(" + strPattern + ", '')",
          "s:find('^' .. " + strPattern + ")"})
        EXPECT_THAT(Error(strText + "return " + strCall), HasSubstr(szTooLong)) << strCall;
    EXPECT_THAT(Error("string.find(('a'):rep(40), 'a-a-a-a-a-a-b')"),
                HasSubstr("string.find could take"));
}

TEST(LuaLibraryGuards, PlainSearchesThatCouldTakeForEver)
{
    const std::string strTexts = "local s, p = ('a'):rep(2000000), ('a'):rep(100000) .. 'b' ";
    EXPECT_THAT(Error(strTexts + "s:find(p, 1, true)"), HasSubstr(szTooLong));
    EXPECT_THAT(Error(strTexts + "s:find(p)"), HasSubstr(szTooLong));
    // With the plain flag a "^" holds nothing.
    EXPECT_THAT(Error(strTexts + "s:find('^' .. p, 1, true)"), HasSubstr(szTooLong));
}

TEST(LuaLibraryGuards, AnAnchorHoldsEveryFunctionButGmatch)
{
    const std::string strTexts = "local s, p = ('a'):rep(2000000), '^' .. ('a'):rep(100000) ";
    EXPECT_EQ(Output(strTexts + "print(s:find(p))"), "1\t100000\n");
    EXPECT_EQ(Output(strTexts + "print(#s:match(p), (s:gsub(p, '', 1) == s))"), "100000\tfalse\n");
    EXPECT_THAT(Error(strTexts + "s:gmatch(p)()"), HasSubstr("string.gmatch could take"));
}

TEST(LuaLibraryGuards, ReplacementsThatComeToNothing)
{
    EXPECT_THAT(Error("('a'):rep(1000000):gsub('()', ('%0'):rep(1000000))"), HasSubstr(szTooLong));
}

TEST(LuaLibraryGuards, RepetitionsOfNothing)
{
    EXPECT_THAT(Error("string.rep('', 1 << 62)"),
                HasSubstr("string.rep " + std::string(szTooLong)));
    EXPECT_THAT(Error("string.rep('', '4611686018427387904')"), HasSubstr(szTooLong));
    EXPECT_THAT(Error("string.rep('x', 1 << 40)"), HasSubstr(szTooLong));
    EXPECT_EQ(Output("print(#string.rep('x', -5), #string.rep('', 1000))"), "0\t0\n");
}

TEST(LuaLibraryGuards, MovesOverTheWholeRange)
{
    EXPECT_THAT(Error("table.move({}, 1, 1 << 60, 2)"), HasSubstr("table.move could take"));
    EXPECT_THAT(Error("table.move({}, -(1 << 62), 1 << 62, 2)"), HasSubstr(szTooLong));
}

TEST(LuaLibraryGuards, SortsOfLongTexts)
{
    EXPECT_THAT(Error("local a, b = ('a'):rep(3000000), ('a'):rep(3000000) .. 'b' "
                      "local t = {} for n = 1, 1000 do t[n] = n % 2 == 0 and a or b end "
                      "table.sort(t)"),
                HasSubstr("table.sort could take"));
}

TEST(LuaLibraryGuards, ARefusalCanBeCaught)
{
    EXPECT_THAT(Output("print(pcall(string.rep, '', 1 << 62))"),
                HasSubstr("false\tstring.rep could"));
}

TEST(LuaLibraryGuards, ManyLongCallsEndWithTheTime)
{
    SandboxLimits limits;
    limits.nMilliseconds = 50;
    EXPECT_EQ(
        RunScript("local s = ('a'):rep(3000) while true do s:find('a*b') end", {}, limits).strError,
        "the script takes more than 50 milliseconds of processor time");
}

TEST(LuaLibraryGuards, ALongCallWithFewInstructionsAroundItIsTheLast)
{
    SandboxLimits limits;
    limits.nMilliseconds = 3;
    const ScriptResult result =
        RunScript("local s = ('a'):rep(4000) s:find('a*b') print('one') s:find('a*b') print('two')",
                  {}, limits);
    EXPECT_EQ(result.strOutput, "one\n");
    EXPECT_EQ(result.strError, ProcessorTimeText(limits.nMilliseconds));
}

} // namespace
} // namespace Tarvane::Server
