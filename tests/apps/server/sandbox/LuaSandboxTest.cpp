#include "tests/apps/server/sandbox/ScriptRuns.h"
#include "tests/support/DecimalComma.h"

#include <gmock/gmock.h>

#include <new>

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

TEST(LuaSandbox, EachPrintWritesOneLine)
{
    EXPECT_EQ(Output("print(1) print('a', 2, nil, true) print()"), "1\na\t2\tnil\ttrue\n\n");
}

TEST(LuaSandbox, NothingPrintedIsNothing)
{
    EXPECT_EQ(Output(""), "");
    EXPECT_EQ(Output("local a = 1"), "");
}

TEST(LuaSandbox, LineEndsAndNulsWithinAPrintBecomeSpaces)
{
    EXPECT_EQ(Output("print('a\\nb\\r\\nc\\0d')"), "a b  c d\n");
}

TEST(LuaSandbox, NumbersPrintSoThatCReadersReadThem)
{
    EXPECT_EQ(Output("print(1e15, 44100.0, 2.5, 2^53, -3)"),
              "1000000000000000.0\t44100.0\t2.5\t9007199254740992.0\t-3\n");
    EXPECT_EQ(Output("print(tostring(1e15), tostring(7))"), "1000000000000000.0\t7\n");
}

TEST(LuaSandbox, ADecimalCommaOfTheUserChangesNothing)
{
    const TarvaneTests::DecimalComma comma;
    EXPECT_EQ(Output("print(1.5 + tonumber('0.25'), 2.5 .. '')"), "1.75\t2.5\n");
}

TEST(LuaSandbox, BytesOfNoEncodingComeOutAsTheyAre)
{
    EXPECT_EQ(Output("print('\\xff\\xfe')"), "\xff\xfe\n");
}

TEST(LuaSandbox, AnErrorKeepsItsWordsAndItsLine)
{
    EXPECT_EQ(Error("\nerror('no more')"), "script:2: no more");
    EXPECT_EQ(Error("error('no more', 0)"), "no more");
    EXPECT_THAT(Error("if then"), HasSubstr("script:1: unexpected symbol near 'then'"));
    EXPECT_THAT(Error("nothing()"), HasSubstr("attempt to call a nil value (global 'nothing')"));
}

TEST(LuaSandbox, AnErrorThatIsNoTextIsDescribed)
{
    EXPECT_EQ(Error("error({})"), "the script failed without words; its error is a table");
    EXPECT_EQ(Error("error()"), "the script failed without words; its error is a nil");
    EXPECT_EQ(Error("error('', 0)"), "the script failed without words; its error is a string");
    EXPECT_EQ(Error("error(12)"), "12");
    EXPECT_EQ(Error("error(1.5)"), "1.5");
}

TEST(LuaSandbox, ALongErrorIsCutBetweenCharacters)
{
    const std::string strError = Error("error(string.rep('\u20ac', 3000), 0)");
    EXPECT_EQ(strError.size(), 4095u);
    EXPECT_EQ(strError.substr(strError.size() - 3), "\u20ac");
}

TEST(LuaSandbox, AnErrorIsNeverShortenedToNothing)
{
    EXPECT_EQ(RunScript("error(('\\x80'):rep(5000), 0)", {}).strError.size(), 4093u);
    EXPECT_EQ(RunScript("error('\\0why', 0)", {}).strError, " why");
    EXPECT_EQ(RunScript("error('\\0\\0', 0)", {}).strError,
              "the script failed without words; its error is a string");
}

TEST(LuaSandbox, WhatWasPrintedBeforeAnErrorIsStillThere)
{
    const ScriptResult result = RunScript("print(1) error('x', 0)", {});
    EXPECT_EQ(result.strOutput, "1\n");
    EXPECT_EQ(result.strError, "x");
}

TEST(LuaSandbox, ScriptsShareNothing)
{
    EXPECT_EQ(Output("x = 1 string.find = nil print = nil"), "");
    EXPECT_EQ(Output("print(x, ('abc'):find('b'))"), "nil\t2\t2\n");
}

TEST(LuaSandbox, EachScriptHasAFreshStateAndItsOwnBounds)
{
    SandboxLimits limits;
    limits.nInstructions = 1000;
    limits.nOutputBytes = 10;
    CLuaSandbox sandbox(limits);
    for (const bool fReady : {false, true})
    {
        EXPECT_EQ(sandbox.Run("x = 1 print('12345678')", {}).strOutput, "12345678\n");
        if (fReady)
            sandbox.GetReady();
        EXPECT_EQ(sandbox.Run("print(x)", {}).strOutput, "nil\n");
        EXPECT_EQ(sandbox.Run("while true do end", {}).strError,
                  "the script runs longer than 1000 instructions");
        if (fReady)
            sandbox.GetReady();
        EXPECT_EQ(sandbox.Run("print(2)", {}).strOutput, "2\n");
    }
}

TEST(LuaSandbox, AStateThatHasNoRoomIsToldOfByTheScript)
{
    SandboxLimits limits;
    limits.nMemoryBytes = 10'000;
    CLuaSandbox sandbox(limits);
    sandbox.GetReady();
    EXPECT_EQ(sandbox.Run("print(1)", {}).strError,
              "the script needs more than 10000 bytes of memory");
}

TEST(LuaSandbox, BytecodeIsRefused)
{
    EXPECT_THAT(Error("\x1bLua"), HasSubstr("attempt to load a binary chunk"));
}

TEST(LuaSandbox, FunctionsOfTheServerGetTheirArgumentsAndAnswer)
{
    const std::vector<ScriptFunction> functions{
        {"Nothing", [](const CScriptArguments&) { return ScriptValue(); }},
        {"Flag", [](const CScriptArguments& arguments) { return !arguments.Boolean(1); }},
        {"Add", [](const CScriptArguments& arguments)
         { return arguments.Integer(1) + arguments.Integer(2); }},
        {"Half", [](const CScriptArguments& arguments) { return arguments.Number(1) / 2; }},
        {"Twice", [](const CScriptArguments& arguments)
         { return arguments.String(1) + arguments.String(1); }},
    };
    const ScriptResult result = RunScript(
        "print(select('#', Nothing()), Flag(false), Add(2, 3), Half(5), Twice('ab'))", functions);
    EXPECT_EQ(result.strError, "");
    EXPECT_EQ(result.strOutput, "0\ttrue\t5\t2.5\tabab\n");
}

TEST(LuaSandbox, AFunctionsRefusalIsTheError)
{
    const std::vector<ScriptFunction> functions{
        {"Refuse", [](const CScriptArguments&) -> ScriptValue { throw CScriptError("not today"); }},
        {"Exhaust", [](const CScriptArguments&) -> ScriptValue { throw std::bad_alloc(); }}};
    EXPECT_EQ(RunScript("Refuse()", functions).strError, "Refuse: not today");
    EXPECT_EQ(RunScript("Exhaust()", functions).strError, "Exhaust: std::bad_alloc");
    EXPECT_EQ(RunScript("print(pcall(Refuse))", functions).strOutput, "false\tRefuse: not today\n");
}

TEST(LuaSandbox, AFunctionLeavesNothingBehindWhenItsResultDoesNotFit)
{
    SandboxLimits limits;
    limits.nMemoryBytes = 100'000;
    const std::vector<ScriptFunction> functions{
        {"Long", [](const CScriptArguments&) { return std::string(200'000, 'x'); }}};
    EXPECT_EQ(RunScript("Long()", functions, limits).strError,
              "the script needs more than 100000 bytes of memory");
}

// The bounds, each with its own words.

TEST(LuaSandboxBounds, ScriptLength)
{
    SandboxLimits limits;
    limits.nScriptBytes = 10;
    EXPECT_EQ(Error("--34567890", limits), "");
    EXPECT_EQ(Error("--345678901", limits), "the script is longer than 10 bytes");
}

TEST(LuaSandboxBounds, Instructions)
{
    EXPECT_EQ(Error("while true do end"), "the script runs longer than 10000000 instructions");
    EXPECT_EQ(Error("for n = 1, math.huge do end"),
              "the script runs longer than 10000000 instructions");
    EXPECT_EQ(Error("local function f() return f() end f()"),
              "the script runs longer than 10000000 instructions");
}

TEST(LuaSandboxBounds, Memory)
{
    const std::string strText = "the script needs more than 16 MiB of memory";
    EXPECT_EQ(Error("local s = 'x' while true do s = s .. s end"), strText);
    EXPECT_EQ(Error("local t = {} while true do t[#t + 1] = {} end"), strText);
    EXPECT_EQ(Error("return string.rep('x', 20000000)"), strText);
    EXPECT_EQ(Error("return ('x'):rep(9000000):upper() .. ('y'):rep(9000000)"), strText);
}

TEST(LuaSandboxBounds, MemoryTooSmallToBeginWith)
{
    SandboxLimits limits;
    for (std::size_t nBytes = 1; nBytes < 40000; nBytes = nBytes * 3 / 2 + 1)
    {
        limits.nMemoryBytes = nBytes;
        const std::string strError = Error("local t = {}", limits);
        if (!strError.empty())
        {
            EXPECT_EQ(strError,
                      "the script needs more than " + std::to_string(nBytes) + " bytes of memory");
        }
    }
    limits.nMemoryBytes = 1000;
    EXPECT_NE(Error("", limits), "");
}

TEST(LuaSandboxBounds, Output)
{
    SandboxLimits limits;
    limits.nOutputBytes = 10;
    EXPECT_EQ(RunScript("print('123456789')", {}, limits).strOutput, "123456789\n");
    EXPECT_EQ(Error("print('1234567890')", limits), "the script prints more than 10 bytes");
    EXPECT_EQ(Error("while true do print(('x'):rep(10000)) end"),
              "the script prints more than 4 MiB");
}

TEST(LuaSandboxBounds, ProcessorTime)
{
    SandboxLimits limits;
    limits.nMilliseconds = 20;
    limits.nInstructions = 1'000'000'000'000;
    const std::string strText = "the script takes more than 20 milliseconds of processor time";
    EXPECT_EQ(Error("while true do end", limits), strText);
    // Instructions that are few and long.
    EXPECT_EQ(Error("local a = ('x'):rep(3000000) local b = ('x'):rep(2999999) .. 'y' "
                    "while true do local c = a < b end",
                    limits),
              strText);
}

TEST(LuaSandboxBounds, PcallDoesNotCatchThem)
{
    EXPECT_EQ(Error("while true do pcall(function() while true do end end) end"),
              "the script runs longer than 10000000 instructions");
    EXPECT_EQ(Error("pcall(pcall, function() while true do end end) print(1)"),
              "the script runs longer than 10000000 instructions");
    EXPECT_EQ(Error("while true do pcall(string.rep, 'x', 30000000) end"),
              "the script needs more than 16 MiB of memory");
    SandboxLimits limits;
    limits.nOutputBytes = 2;
    EXPECT_EQ(Error("while true do pcall(print, 1) end", limits),
              "the script prints more than 2 bytes");
}

TEST(LuaSandboxBounds, NestingEndsInAnError)
{
    EXPECT_EQ(Error("local function f() return 1 + f() end f()"),
              "the script needs more than 16 MiB of memory");
    EXPECT_THAT(Error("return " + std::string(1000, '(') + "1" + std::string(1000, ')')),
                HasSubstr("overflow"));
    EXPECT_EQ(Error("local function f() return pcall(f) end f()"), "");
    EXPECT_THAT(Error("local f f = function() return ('a'):gsub('a', f) end f()"),
                HasSubstr("overflow"));
}

} // namespace
} // namespace Tarvane::Server
