#include "apps/support/recording/CommandWatch.h"

#include "utils/UnicodeText.h"

#include <gtest/gtest.h>

#include <regex>

namespace Tarvane
{
namespace
{

std::string Bytes(const char* szText)
{
    const std::u16string units = Utf16FromUtf8(szText);
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

void Send(CCommandWatch& watch, UInt32 nNumber, const char* szScript)
{
    const std::string bytes = Bytes(szScript);
    watch.Add(SeenEvent{nNumber, 'TkNe', 'TKNE', 'LCmd', {{'----', typeUnicodeText, bytes}}});
}

TEST(CommandWatch, TellsWhatTheServerAnswered)
{
    CCommandWatch watch;
    Send(watch, 1, "print('Größe')");
    const std::string strResult = Bytes("Größe\n");
    watch.Add(SeenReply{1, 0, 10, {{'Rslt', typeUnicodeText, strResult}}});
    const std::vector<SeenCommand> commands = watch.Take();
    ASSERT_EQ(commands.size(), 1u);
    EXPECT_EQ(commands[0].strScript, "print('Größe')");
    EXPECT_EQ(commands[0].strResult, "Größe\n");
    EXPECT_TRUE(commands[0].fHasResult);
    EXPECT_FALSE(commands[0].IsRefused());
    EXPECT_TRUE(watch.Take().empty());
}

TEST(CommandWatch, AnErrorWithoutAResultIsARefusal)
{
    CCommandWatch watch;
    Send(watch, 1, "AddAudioRegion()");
    const std::string strError = Bytes("no file");
    watch.Add(SeenReply{1, 0, 10, {{'Errr', typeUnicodeText, strError}}});
    const SeenCommand command = watch.Take().at(0);
    EXPECT_TRUE(command.IsRefused());
    EXPECT_EQ(command.strError, "no file");
}

TEST(CommandWatch, AFailedEventIsNoRefusal)
{
    CCommandWatch watch;
    Send(watch, 1, "print(1)");
    watch.Add(SeenReply{1, -1712, 10, {}});
    EXPECT_FALSE(watch.Take().at(0).IsRefused());
}

TEST(CommandWatch, ACommandUnderWayIsToldInOneLine)
{
    const auto since = std::chrono::steady_clock::now() - std::chrono::seconds(100);
    for (const auto& [strScript, strName] :
         {std::pair<std::string, std::string>{"SelectScriptDocument() add(1)", "add"},
          {"print(1)\nprint(2)\n", "print(1)"},
          {std::string(300, 'x'), std::string(120, 'x')}})
        EXPECT_EQ(TextOf(CommandUnderWay{strScript, since}).rfind(strName + ", since ", 0), 0u);
    EXPECT_TRUE(std::regex_search(TextOf(CommandUnderWay{"x", since}),
                                  std::regex(", since \\d\\d:\\d\\d:\\d\\d, for 10\\d s$")));
}

TEST(CommandWatch, TellsTheCommandThatIsUnderWay)
{
    CCommandWatch watch;
    EXPECT_FALSE(watch.UnderWay());
    const auto before = std::chrono::steady_clock::now();
    Send(watch, 4, "print(1)");
    ASSERT_TRUE(watch.UnderWay());
    EXPECT_EQ(watch.UnderWay()->strScript, "print(1)");
    EXPECT_GE(watch.UnderWay()->since, before);
    watch.Add(SeenReply{4, 0, 10, {}});
    EXPECT_FALSE(watch.UnderWay());
}

TEST(CommandWatch, KeepsTheLastOfManyCommands)
{
    CCommandWatch watch;
    for (UInt32 n = 1; n <= CCommandWatch::kMostKept + 5; ++n)
    {
        Send(watch, n, std::to_string(n).c_str());
        watch.Add(SeenReply{n, 0, 10, {}});
    }
    const std::vector<SeenCommand> commands = watch.Take();
    EXPECT_EQ(commands.size(), CCommandWatch::kMostKept);
    EXPECT_EQ(commands.back().strScript, std::to_string(CCommandWatch::kMostKept + 5));
}

} // namespace
} // namespace Tarvane
