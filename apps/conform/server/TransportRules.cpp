#include "apps/conform/server/ServerRules.h"

namespace Tarvane::Conform
{
namespace
{

// Two bytes, three and four in UTF-8; one unit, one and two in UTF-16.
constexpr char szSample[] = "V\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99";
constexpr int kCommands = 5;
constexpr std::size_t kLongResult = 100000;

void Expect(const std::string& strScript, const std::string& strPrinted,
            const std::string& strExpected)
{
    if (strPrinted != strExpected)
        throw CBroken(QuotedText(strScript) + " was answered with " + QuotedText(strPrinted));
}

void ExpectPrinted(const CServerPeer& peer, const std::string& strScript,
                   const std::string& strExpected)
{
    Expect(strScript, peer.Printed(strScript), strExpected);
}

void Answers(const ServerBench& bench)
{
    for (int nCommand = 0; nCommand < kCommands; ++nCommand)
    {
        const std::string strScript = "print(" + std::to_string(nCommand) + ")\n";
        ExpectPrinted(bench.peer, strScript, std::to_string(nCommand) + "\n");
    }
}

void LinesEnd(const ServerBench& bench)
{
    ExpectPrinted(bench.peer, "print('a')\nprint('b')\n", "a\nb\n");
}

void PrintsNumbers(const ServerBench& bench)
{
    ExpectPrinted(bench.peer, "print(3-5)\nprint(2+1)\n", "-2\n3\n");
}

void KeepsText(const ServerBench& bench)
{
    const std::string strScript = "print('" + std::string(szSample) + "')\n";
    ExpectPrinted(bench.peer, strScript, szSample + std::string("\n"));
}

void PrintsMuch(const ServerBench& bench)
{
    const std::string strScript = "print(string.rep('x', " + std::to_string(kLongResult) + "))\n";
    ExpectPrinted(bench.peer, strScript, std::string(kLongResult, 'x') + "\n");
}

void TellsErrors(const ServerBench& bench)
{
    if (bench.peer.Error("error('asked for')\n").find("asked for") == std::string::npos)
        throw CBroken("a script that fails is answered without the text of its error in 'Errr'");
    if (bench.peer.Error("this is no script\n").empty())
        throw CBroken("a text that is no script is answered without an error");
}

void TellsNoErrors(const ServerBench& bench)
{
    const std::string strError = bench.peer.Error("print(1)\n");
    if (!strError.empty())
        throw CBroken("a script that does not fail is answered with the error " +
                      QuotedText(strError));
}

void TakesSilence(const ServerBench& bench)
{
    ExpectPrinted(bench.peer, "local nothing\n", "");
    ExpectPrinted(bench.peer, "", "");
}

void KeepsCommandsApart(const ServerBench& bench)
{
    bench.peer.Printed("nLeftBehind = 1\nprint(1)\n");
    ExpectPrinted(bench.peer, "print(nLeftBehind)\n", "nil\n");
}

void OutlivesErrors(const ServerBench& bench)
{
    bench.peer.Error("error({})\n");
    bench.peer.Error("local function f() return f() + 1 end\nf()\n");
    ExpectPrinted(bench.peer, "print(1)\n", "1\n");
}

} // namespace

std::vector<ServerRule> TransportRules()
{
    return {
        {{"S1", Level::Must,
          "answer every event of class 'TKNE', id 'LCmd', with the text that its script printed, "
          "as 'utxt' under 'Rslt'",
          "a command without a readable 'Rslt' has failed, and the take is not delivered"},
         Answers},
        {{"S2", Level::Must, "end what each print writes with a line end",
          "results are read line by line"},
         LinesEnd},
        {{"S3", Level::Must, "print whole numbers as plain decimal digits",
          "counts, tracks and positions are read as such"},
         PrintsNumbers},
        {{"S4", Level::Must, "keep text as it went, in UTF-16 of the machine's byte order",
          "names and paths in any script travel through it"},
         KeepsText},
        {{"S5", Level::Must, "answer with all that was printed, however long",
          "a long list of tracks would stop the host when its count does not fit"},
         PrintsMuch},
        {{"S6", Level::Must, "put the text of a script's error into 'Errr'",
          "whoever looks for what went wrong has nothing else"},
         TellsErrors},
        {{"S7", Level::Must, "leave 'Errr' out, or empty, when the script did not fail",
          "the user is told of a failure that did not happen"},
         TellsNoErrors},
        {{"S8", Level::Should, "answer a script that prints nothing with an empty 'Rslt'",
          "a reply without 'Rslt' reads as a failed command, and the take as undelivered"},
         TakesSilence},
        {{"S9", Level::Should, "keep no variables of one script for the next",
          "a script must not read what another left behind"},
         KeepsCommandsApart},
        {{"S10", Level::Must, "go on after scripts that fail in any way",
          "one bad command must not cost the takes after it"},
         OutlivesErrors},
    };
}

} // namespace Tarvane::Conform
