#include "tests/apps/server/sandbox/ScriptRuns.h"

#include <gmock/gmock.h>

namespace Tarvane::Server
{
namespace
{

// The error of reading the first argument of a call that is given as a script.
std::string ErrorOf(const std::string& strCall, std::function<void(const CScriptArguments&)> read)
{
    const std::vector<ScriptFunction> functions{{"F", [read](const CScriptArguments& arguments)
                                                 { return read(arguments), ScriptValue(); }}};
    return RunScript(strCall, functions).strError;
}

void ReadBoolean(const CScriptArguments& arguments)
{
    arguments.Boolean(1);
}

void ReadInteger(const CScriptArguments& arguments)
{
    arguments.Integer(1);
}

void ReadNumber(const CScriptArguments& arguments)
{
    arguments.Number(1);
}

void ReadString(const CScriptArguments& arguments)
{
    arguments.String(1);
}

void ReadIntegers(const CScriptArguments& arguments)
{
    arguments.Integers(1, 3);
}

TEST(ScriptArguments, WhatIsMissingOrOfAnotherTypeIsNamed)
{
    EXPECT_EQ(ErrorOf("F()", ReadBoolean), "F: argument 1 should be a boolean, and is missing");
    EXPECT_EQ(ErrorOf("F(1)", ReadBoolean), "F: argument 1 should be a boolean, and is a number");
    EXPECT_EQ(ErrorOf("F()", ReadInteger),
              "F: argument 1 should be a whole number, and is missing");
    EXPECT_EQ(ErrorOf("F('1')", ReadInteger),
              "F: argument 1 should be a whole number, and is a string");
    EXPECT_EQ(ErrorOf("F(1.5)", ReadInteger),
              "F: argument 1 should be a whole number, and is a number");
    EXPECT_EQ(ErrorOf("F(2^70)", ReadInteger),
              "F: argument 1 should be a whole number, and is a number");
    EXPECT_EQ(ErrorOf("F(nil)", ReadNumber), "F: argument 1 should be a number, and is a nil");
    EXPECT_EQ(ErrorOf("F(0/0)", ReadNumber),
              "F: argument 1 should be a finite number, and is a number");
    EXPECT_EQ(ErrorOf("F(1/0)", ReadNumber),
              "F: argument 1 should be a finite number, and is a number");
    EXPECT_EQ(ErrorOf("F(12)", ReadString), "F: argument 1 should be a string, and is a number");
    EXPECT_EQ(ErrorOf("F('a\\0b')", ReadString), "F: argument 1 contains a NUL byte");
    EXPECT_EQ(ErrorOf("F(1)", ReadIntegers), "F: argument 1 should be a table, and is a number");
    EXPECT_EQ(ErrorOf("F({1, 'a'})", ReadIntegers),
              "F: argument 1 should be a table of whole numbers, and is a table");
    EXPECT_EQ(ErrorOf("F({1, 2, 3, 4})", ReadIntegers), "F: argument 1 holds more than 3 entries");
}

TEST(ScriptArguments, ValuesArriveAsTheyAre)
{
    const auto check = [](const CScriptArguments& arguments)
    {
        EXPECT_EQ(arguments.Count(), 6);
        EXPECT_EQ(arguments.Integer(1), -9007199254740993);
        EXPECT_EQ(arguments.Integer(2), 3);
        EXPECT_EQ(arguments.Number(3), 1244.5);
        EXPECT_EQ(arguments.String(4), "a\nb");
        EXPECT_TRUE(arguments.Boolean(5));
        EXPECT_EQ(arguments.Integers(6, 3), (std::vector<std::int64_t>{0, 2, 5}));
    };
    EXPECT_EQ(ErrorOf("F(-9007199254740993, 3.0, 1.2445e3, 'a\\nb', true, {0, 2, 5})", check), "");
}

TEST(ScriptArguments, NilIsAsGoodAsMissing)
{
    const auto check = [](const CScriptArguments& arguments)
    {
        EXPECT_TRUE(arguments.Has(1));
        EXPECT_FALSE(arguments.Has(2));
        EXPECT_FALSE(arguments.Has(3));
    };
    EXPECT_EQ(ErrorOf("F(false, nil)", check), "");
}

TEST(ScriptArguments, RecordsHoldTheNamedWholeNumbersOfTables)
{
    const auto check = [](const CScriptArguments& arguments)
    {
        const std::vector<ScriptRecord> records = arguments.Records(1, 4);
        ASSERT_EQ(records.size(), 2u);
        EXPECT_EQ(records[0], (ScriptRecord{{"Start", -5}, {"Track", 7}}));
        EXPECT_TRUE(records[1].empty());
    };
    EXPECT_EQ(
        ErrorOf("F({{Track = 7.0, Start = -5, Name = 'x', Half = 0.5, 9, [2.5] = 3}, {}})", check),
        "");
    const auto read = [](const CScriptArguments& arguments) { arguments.Records(1, 2); };
    EXPECT_EQ(ErrorOf("F(1)", read), "F: argument 1 should be a table, and is a number");
    EXPECT_EQ(ErrorOf("F({1})", read), "F: argument 1 should be a table of tables, and is a table");
    EXPECT_EQ(ErrorOf("F({{}, {}, {}})", read), "F: argument 1 holds more than 2 entries");
}

TEST(ScriptArguments, AnEmptyTableHoldsNothing)
{
    EXPECT_EQ(ErrorOf("F({})", ReadIntegers), "");
}

} // namespace
} // namespace Tarvane::Server
