// Every program where something is missing, full, foreign or closed: it ends in time, by no signal,
// with an exit code and words of its own.
#include "tests/apps/server/ServerFixture.h"
#include "tests/hostile/HostileTable.h"
#include "tests/support/DecimalComma.h"
#include "tests/utils/Bytes.h"
#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace TarvaneTest
{
namespace
{

// A program and what is asked of it, with what is to come of it where nothing is wrong.
struct Program
{
    std::string strName;
    std::vector<std::string> arguments;
    int nCode;
    bool fWindow = false; // needs a display
};

// What is wrong: shell words before the program is run in place of the shell.
struct Surroundings
{
    std::string strName;
    std::string strPrepare;
    std::vector<int> codes{};       // that may come as well as the usual one
    std::vector<int> windowCodes{}; // of programs that open a window, instead
    bool fOutputClosed = false;     // no words are asked for
    int nServerCode = 0;            // of a server that is to serve there
};

class HostilePrograms : public ServerFixture
{
protected:
    HostilePrograms()
    {
        {
            const TarvaneTests::DecimalComma findsItsLocale;
        }
        if (const char* szFolder = std::getenv("LOCPATH"))
            m_strLocales = szFolder;
        // The C library forgets a few bytes of the path of locales; and what programs forget, the
        // tests of each look for.
        unsetenv("LOCPATH");
        const char* const szOptions = std::getenv("ASAN_OPTIONS");
        setenv("ASAN_OPTIONS",
               (std::string(szOptions ? szOptions : "") + ":detect_leaks=0").c_str(), 1);
        CParameterBlock root;
        root.AddParameter("Gain", 0.5F);
        std::ofstream(File("good.session"), std::ios::binary) << SaveSession(root);
        std::ofstream(File("link.jsonl"))
            << R"({"format":"tarvane-recording","version":1,"started":"x","program":"y"})" << '\n';
    }

    std::string File(const std::string& strName) const { return m_folder / strName; }

    std::vector<Program> Programs() const
    {
        return {
            {"tarvane-link", {"tracks", "--timeout", "5"}, 3},
            {"tarvane-session", {"dump", File("good.session")}, 0},
            {"tarvane-replay", {"--html", File("page.html"), File("link.jsonl")}, 0},
            {"tarvane-server", {"--list-session", File("none.session")}, 2},
            {"tarvane-conform", {"server", "--timeout", "2"}, 2},
            {"tarvane-demo", {"--headless", "--out", File("out"), File("none.wav")}, 2},
            {"tarvane-soak", {"--keep", m_folder.Path()}, 2},
            {"tarvane-palette", {"--store", File("colours.palette")}, 0},
            {"tarvane-host",
             {"--headless", "--speed", "max", "--capture-folder", m_folder.Path(), m_strTake},
             1,
             true},
        };
    }

    std::vector<Surroundings> AllSurroundings() const
    {
        const std::string strOwn = File("temporary") + "/GNUstepSecure" + std::to_string(geteuid());
        const std::string strTemporary = "export TEMP='" + File("temporary") + "' TMPDIR='" +
                                         File("temporary") +
                                         "'; rm -rf \"$TEMP\"; mkdir \"$TEMP\"; ";
        return {
            {"nothing wrong", ""},
            {"no HOME", "unset HOME"},
            {"no display", "unset DISPLAY", {}, {2}},
            {"no bus",
             "unset DBUS_SESSION_BUS_ADDRESS; export XDG_RUNTIME_DIR=/nonexistent",
             {},
             {},
             false,
             1},
            {"a bus that is gone",
             "export DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent/bus",
             {},
             {},
             false,
             1},
            {"a folder for temporary files that takes none", "export TEMP=/proc TMPDIR=/proc"},
            {"20 descriptors", "ulimit -n 20", {1, 2}},
            {"no file may grow", "ulimit -S -f 0", {1, 2}, {1, 2}, false, 1},
            {"closed output", "exec >&-", {1, 2}, {}, true},
            {"full output", "exec >/dev/full", {1, 2}, {}, true},
            {"closed streams", "exec <&- >&- 2>&-", {1, 2}, {}, true},
            {"the C locale", "export LC_ALL=C LANG=C"},
            {"a comma locale", "export LOCPATH='" + m_strLocales + "' LC_ALL=de_DE.UTF-8"},
            {"a foreign lock folder", strTemporary + "ln -s /etc '" + strOwn + "'"},
            {"a lock dated ahead",
             strTemporary + "mkdir -m 700 '" + strOwn + "' && mkdir -p '" + strOwn +
                 "/NSMessagePort/names/lock' && touch -d '2100-01-01' '" + strOwn +
                 "/NSMessagePort/names/lock' && chmod -R 700 '" + strOwn + "'"},
        };
    }

    static std::vector<std::string> In(const Surroundings& surroundings, const std::string& strName)
    {
        return {"/bin/sh", "-c", surroundings.strPrepare + "\nexec \"$@\"", "sh",
                PROGRAM_FOLDER "/" + strName};
    }

    void Try(const Program& program, const Surroundings& surroundings)
    {
        std::vector<std::string> arguments = In(surroundings, program.strName);
        arguments.insert(arguments.end(), program.arguments.begin(), program.arguments.end());
        std::vector<int> codes = surroundings.codes;
        if (program.fWindow && !surroundings.windowCodes.empty())
            codes = surroundings.windowCodes;
        else
            codes.push_back(program.nCode);

        Tarvane::CChildProcess child(arguments);
        child.CloseInput();
        const auto start = std::chrono::steady_clock::now();
        const std::optional<int> nCode = child.WaitForEnd(kAnyTime);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        const std::string strWhat = program.strName + ", " + surroundings.strName;
        const std::string strWords = child.ErrorOutput();
        m_table.Note(strWhat, testing::PrintToString(codes),
                     std::to_string(nCode.value_or(-1)) + " after " + std::to_string(time.count()) +
                         " s");
        ASSERT_TRUE(nCode.has_value()) << strWhat << " hangs\n" << strWords;
        EXPECT_THAT(codes, testing::Contains(*nCode)) << strWhat << "\n" << strWords;
        // Whoever fails says so; a host tells its story instead.
        if (*nCode != 0 && !surroundings.fOutputClosed)
        {
            EXPECT_NE(strWords + child.Output(), "") << strWhat;
        }
        EXPECT_EQ((strWords + child.Output()).find('\x1b'), std::string::npos) << strWhat;
    }

    std::string m_strLocales; // made by the build
    CHostileTable m_table;
};

TEST_F(HostilePrograms, EndInTimeWithACodeAndWords)
{
    for (const Surroundings& surroundings : AllSurroundings())
        for (const Program& program : Programs())
            Try(program, surroundings);
}

// What stands where a session or a recording should.
std::vector<std::pair<std::string, std::string>> HostileFiles()
{
    CParameterBlock nested, root;
    nested.AddParameter("Gain", 0.5F);
    nested.AddParameter("Name", "a");
    root.AddParameter("Region", &nested);
    const std::string strSession = SaveSession(root);
    const std::string strHeader =
        R"({"format":"tarvane-recording","version":1,"started":"x","program":"y"})"
        "\n";
    const std::string strEvent =
        R"({"time":1,"kind":"event","number":1,"target":"TkNe","class":"TKNE","id":"LCmd",)"
        R"~("parameters":{"----":{"type":"utxt","text":"print(1)"}}})~"
        "\n";
    Bytes deep;
    deep.Magic().U32(100).U32(2).U32(1).Text(std::string_view("B\0", 2)).U8(0).U32(1);
    for (int n = 0; n < 5000; n++)
        deep.U32(CParameterBlock::kType).U8(1).U32(n < 4999 ? 1 : 0);
    std::vector<std::pair<std::string, std::string>> files{
        {"nothing", ""},
        {"one zero", std::string(1, '\0')},
        {"a megabyte of zeros", std::string(1 << 20, '\0')},
        {"a megabyte of brackets", std::string(1 << 20, '[')},
        {"the magic word alone", Bytes().Magic()},
        {"more names than bytes", Bytes().Magic().U32(100).U32(0xFFFFFFFF).U32(0xFFFFFFFF)},
        {"more entries than bytes",
         Bytes().Magic().U32(100).U32(0).U32(0).U8(0).U32(0xFFFFFFFF).U32(7)},
        {"an entry of no type", Bytes().Magic().U32(100).U32(0).U32(0).U8(0).U32(1).U32(77)},
        {"5000 levels", deep},
        {"a session with more behind", strSession + strSession},
        {"a text session", R"({"form": "Tarvane Link session", "version": 1})"},
        {"a text session of a later version", R"({"form": "Tarvane Link session", "version": 99})"},
        {"a recording of nothing", strHeader},
        {"a recording of a later version", R"({"format":"tarvane-recording","version":99})"},
        {"a recording with an event twice", strHeader + strEvent + strEvent},
        {"a recording with a number beyond all",
         strHeader + R"({"time":99999999999999999999,"kind":"reply","number":1e400})"},
        {"a recording with a deep line", strHeader + std::string(1 << 16, '[')},
        {"a recording with escape sequences", strHeader + "\x1b[2J\x1b]0;x\x07"},
    };
    for (std::size_t nCut = 1; nCut < strSession.size(); nCut += strSession.size() / 6)
        files.emplace_back("a session cut at " + std::to_string(nCut), strSession.substr(0, nCut));
    for (const std::size_t nCut : {20u, 60u, 120u, 200u})
        files.emplace_back("a recording cut at " + std::to_string(nCut),
                           (strHeader + strEvent).substr(0, nCut));
    return files;
}

TEST_F(HostilePrograms, FilesThatAreNoneEndNobody)
{
    const std::vector<std::pair<std::string, std::vector<std::string>>> readers{
        {"tarvane-session", {"verify"}},
        {"tarvane-session", {"dump"}},
        {"tarvane-server", {"--list-session"}},
        {"tarvane-replay", {"--html", File("page.html")}},
    };
    for (const auto& [strWhat, strBytes] : HostileFiles())
    {
        std::ofstream(File("hostile"), std::ios::binary) << strBytes;
        for (const auto& [strProgram, arguments] : readers)
        {
            Program program{strProgram, arguments, 0};
            program.arguments.push_back(File("hostile"));
            Try(program, {strWhat, "", {1, 2}});
        }
        std::ifstream kept(File("hostile"), std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), strBytes)
            << strWhat << " was written over";
    }
}

TEST_F(HostilePrograms, ServerServesOrSaysWhyNot)
{
    for (const Surroundings& surroundings : AllSurroundings())
    {
        if (surroundings.fOutputClosed)
            continue; // it says "ready" there
        std::vector<std::string> arguments = In(surroundings, "tarvane-server");
        arguments.insert(arguments.end(), {"--session", File("new.session")});
        Tarvane::CChildProcess server(arguments);
        const bool fReady = server.WaitForLine("ready", kAnyTime).has_value();
        server.Terminate();
        const int nCode = server.WaitForEnd(kAnyTime).value_or(-1);
        EXPECT_EQ(nCode, fReady ? 0 : surroundings.nServerCode) << surroundings.strName << "\n"
                                                                << server.ErrorOutput();
        EXPECT_EQ(fReady, surroundings.nServerCode == 0) << surroundings.strName;
        if (!fReady)
        {
            EXPECT_THAT(server.ErrorOutput(), testing::HasSubstr("tarvane-server: "));
        }
        std::filesystem::remove(File("new.session"));
    }
}

} // namespace
} // namespace TarvaneTest
