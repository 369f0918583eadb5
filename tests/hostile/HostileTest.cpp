// Inputs that mean harm, through every door of the server, each with what is to come of it. The
// server must answer each in time, tell no failed change as done, keep its session, and serve the
// next client.
#include "tests/apps/server/ServerFixture.h"
#include "tests/hostile/HostileTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace TarvaneTest
{
namespace
{

// What is to come of an input.
enum class Fate
{
    Answered, // 'Rslt' and no 'Errr'
    Failed,   // 'Errr' beside an empty 'Rslt'
    Refused,  // 'Errr' without 'Rslt'
    NotRun,   // a status other than 0
    Survived, // any of them
};

const char* NameOf(Fate fate)
{
    switch (fate)
    {
    case Fate::Answered:
        return "answered";
    case Fate::Failed:
        return "failed";
    case Fate::Refused:
        return "refused";
    case Fate::NotRun:
        return "not run";
    case Fate::Survived:
        break;
    }
    return "survived";
}

Fate FateOf(const CScriptAnswer& answer)
{
    if (answer.nStatus != noErr)
        return Fate::NotRun;
    const bool fError = !answer.error.value_or("").empty();
    if (!fError)
        return answer.result ? Fate::Answered : Fate::NotRun;
    return answer.result ? Fate::Failed : Fate::Refused;
}

struct Input
{
    std::string strScript;
    Fate fate;
};

std::string InDocument(const std::string& strBody)
{
    return "if SelectScriptDocument() then\n" + strBody + "\nend\n";
}

std::string Adding(const std::string& strTrack, const std::string& strPath,
                   const std::string& strRest)
{
    return InDocument("idTrack = GetTrackID(" + strTrack + ")\nAddAudioRegion(idTrack, " + strPath +
                      ", true, false, " + strRest + ")");
}

// Values that no number, track or position is.
const std::vector<std::string> kNoNumbers{"nil",    "true",
                                          "'x'",    "{}",
                                          "0/0",    "1/0",
                                          "-1/0",   "1.5",
                                          "-0.5",   "print",
                                          "'1'",    "2^53+2",
                                          "-2^60",  "math.maxinteger",
                                          "1e300",  "''",
                                          "{1}",    "math.mininteger",
                                          "'0x10'", "{{}}",
                                          "-1e18"};

const std::vector<std::string> kNoPaths{"nil",
                                        "5",
                                        "''",
                                        "'relative.wav'",
                                        "'/'",
                                        "'/dev/null'",
                                        "'/dev/zero'",
                                        "'/dev/stdin'",
                                        "'/proc/self/mem'",
                                        "'/etc/passwd'",
                                        "'/a\\0b'",
                                        "'/\\xff\\xfe'",
                                        "('/x'):rep(5000)",
                                        "'/' .. ('a'):rep(300)",
                                        "'/missing.wav'",
                                        "'/proc/self/fd/0'",
                                        "'//'",
                                        "'/tmp/../tmp'",
                                        "'file:///tmp/a.wav'",
                                        "'~/a.wav'",
                                        "{}",
                                        "print",
                                        "'/\\27[2J'",
                                        "'$HOME'",
                                        "'/tmp'"};

void AddArguments(std::vector<Input>& inputs, const std::string& strTake)
{
    const std::string strPath = "\"" + strTake + "\"";
    for (const std::string& strBad : kNoNumbers)
    {
        for (const std::string& strRest :
             {strBad + ",0,100", "0," + strBad + ",100", "0,0," + strBad})
            inputs.push_back({Adding("0", strPath, strRest), Fate::Refused});
        inputs.push_back({Adding(strBad, strPath, "0,0,100"), Fate::Refused});
        inputs.push_back({InDocument("DeleteRegion(" + strBad + ")"), Fate::Refused});
        inputs.push_back({InDocument("RegionRender(" + strBad + ")"), Fate::Refused});
        inputs.push_back({InDocument("SelectProcess(" + strBad + ")"), Fate::Refused});
        inputs.push_back({InDocument("CreateProcess(" + strBad + ", 'x', {}, {})"), Fate::Refused});
        for (const char* szQuestion : {"GetTrackName", "GetRegionCount", "ExportRegion",
                                       "GetRegionStartPosition", "CountMarkerAreas"})
            inputs.push_back({InDocument("print(" + std::string(szQuestion) + "(" + strBad + "))"),
                              Fate::Failed});
        inputs.push_back(
            {InDocument("print(CheckForDuplicateRegion(1, " + strPath + ", 0, 0, " + strBad + "))"),
             Fate::Failed});
    }
    for (const std::string& strBad : kNoPaths)
    {
        inputs.push_back({Adding("0", strBad, "0,0,100"), Fate::Refused});
        inputs.push_back(
            {InDocument("print(CheckForDuplicateRegion(GetTrackID(0), " + strBad + ", 0,0,100))"),
             Fate::Failed});
        // As the view sends it, text and all.
        inputs.push_back({Adding("0", "\"" + strBad + "\"", "0,0,100"), Fate::Refused});
    }
}

void AddScripts(std::vector<Input>& inputs)
{
    for (const char* szAbsent : {"os",
                                 "io",
                                 "require",
                                 "load",
                                 "loadstring",
                                 "dofile",
                                 "loadfile",
                                 "debug",
                                 "package",
                                 "coroutine",
                                 "setmetatable",
                                 "getmetatable",
                                 "collectgarbage",
                                 "string.dump",
                                 "utf8",
                                 "ffi",
                                 "jit",
                                 "arg",
                                 "xpcall",
                                 "_ENV._G._G.os"})
        inputs.push_back({"print(" + std::string(szAbsent) + ")", Fate::Answered});
    for (const char* szCall :
         {"os.execute('touch /tmp/x')", "io.open('/etc/passwd')", "require('os')", "load('x=1')()",
          "dofile('/etc/passwd')", "debug.getregistry()", "coroutine.create(print)",
          "setmetatable({}, {__gc=print})", "string.dump(print)", "('x').dump(print)"})
        inputs.push_back({szCall, Fate::Failed});
    for (const char* szSyntax : {"(",
                                 ")",
                                 "end",
                                 "if",
                                 "print(",
                                 "'",
                                 "\"",
                                 "[[",
                                 "--[[",
                                 "goto x",
                                 "break",
                                 "::x:: ::x::",
                                 "return return",
                                 "local",
                                 "function",
                                 "1",
                                 "x =",
                                 "= 1",
                                 "\\",
                                 "@",
                                 "#",
                                 "$",
                                 "\x1bLua",
                                 "\x1bLuaS",
                                 "\x7f"
                                 "ELF",
                                 "0x",
                                 "1e",
                                 "'\\400'",
                                 "'\\u{110000000}'",
                                 "local x <close> = 5"})
        inputs.push_back({szSyntax, Fate::Failed});
    for (const char* szError : {"error()",
                                "error('')",
                                "error({})",
                                "error(nil)",
                                "error(print)",
                                "error(1/0)",
                                "error(('\\x80'):rep(5000), 0)",
                                "error('\\0', 0)",
                                "error('\\27[2J', 0)",
                                "error(-0.0)",
                                "error(('x'):rep(100000), 0)",
                                "assert(false)",
                                "assert(nil, {})",
                                "local x = nil + 1",
                                "local x = {} .. 'a'",
                                "(nil)()",
                                "('x')()",
                                "print(#5)",
                                "print({} < {})",
                                "local t = nil t.x = 1"})
        inputs.push_back({szError, Fate::Failed});
    // Those that catch errors begin next to the bound: the sanitizers make each error dear.
    for (const char* szBound :
         {"while true do end",
          "repeat until false",
          "for n = 1, math.huge do end",
          "local function f() return f() end f()",
          "local function f() f() end f()",
          "local s = 'x' while true do s = s .. s end",
          "local t = {} while true do t[#t+1] = t end",
          "string.rep('x', 1 << 40)",
          "string.rep('', 1 << 62)",
          "('x'):rep(1e9, 'y')",
          "for n = 1, 9990000 do end while true do pcall(error) end",
          "for n = 1, 9990000 do end while true do pcall(pcall, error) end",
          "while true do print(('x'):rep(10000)) end",
          "table.concat({}, 'x', 1, 1 << 30)",
          "table.unpack({}, 1, 1e7)",
          "table.move({}, 1, 1e15, 2)",
          "string.find(('a'):rep(9999), ('a-'):rep(999) .. 'b')",
          "string.format('%99999d', 1)",
          "string.format(('%s'):rep(1000))",
          "local t = {} for n = 1, 1e6 do t[n] = n end table.sort(t, function() return true end)",
          "select(-1e9, 1)",
          "string.char(256)",
          "('x'):byte(1, 1e9, {})",
          "tostring(('x'):rep(1 << 25))",
          "math.random(0, -1)"})
        inputs.push_back({szBound, Fate::Survived});
    // Deep, long and wide, and all of no use.
    for (const int nDepth : {100, 1000, 10000})
        for (const char* szOpen :
             {"(", "{", "-", "not ", "function() ", "[", "a.", "a(", "if 1 then "})
        {
            std::string strScript = "x = ";
            for (int n = 0; n < nDepth; n++)
                strScript += szOpen;
            inputs.push_back({strScript, Fate::Failed});
        }
    inputs.push_back({std::string(300 << 10, ' '), Fate::Failed});
    inputs.push_back({std::string(300 << 10, ' ') + "AddAudioRegion()", Fate::Refused});
}

std::vector<Input> AllScripts(const std::string& strTake)
{
    std::vector<Input> inputs;
    AddArguments(inputs, strTake);
    AddScripts(inputs);
    return inputs;
}

class Hostile : public ServerFixture
{
protected:
    CHostileTable m_table;
};

TEST_F(Hostile, ScriptsAreAnsweredAndChangeNothing)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox"});
    const std::vector<Input> inputs = AllScripts(m_strTake);
    EXPECT_GE(inputs.size(), 500u);
    for (const Input& input : inputs)
    {
        const CScriptAnswer answer = SendScript(input.strScript);
        const Fate fate = FateOf(answer);
        m_table.Note(input.strScript, NameOf(input.fate),
                     NameOf(fate) + std::string(": ") +
                         answer.error.value_or(answer.result.value_or("")));
        if (input.fate == Fate::Survived)
            EXPECT_NE(fate, Fate::NotRun) << Shown(input.strScript);
        else
            EXPECT_EQ(NameOf(fate), std::string(NameOf(input.fate)))
                << Shown(input.strScript) << "\n"
                << answer.error.value_or("");
    }
    EXPECT_EQ(SendScript("print(GetUpdateCount())").result, "0\n");
    EXPECT_TRUE(server->IsRunning());
}

// What stands where a sound file of 100 samples should: a header that lies in one place, or a file
// that ends too soon.
struct LyingSound
{
    std::string strWhat;
    std::string strBytes;
    bool fCut;
};

std::vector<LyingSound> LyingSounds(const std::filesystem::path& folder)
{
    std::vector<LyingSound> all;
    for (const auto& [strKind, nFormat] :
         {std::pair<std::string, int>("WAV", SF_FORMAT_WAV | SF_FORMAT_PCM_24),
          {"RF64", SF_FORMAT_RF64 | SF_FORMAT_FLOAT},
          {"AIFF", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
          {"FLAC", SF_FORMAT_FLAC | SF_FORMAT_PCM_16}})
    {
        std::ifstream file(MakeSound(folder / "true", Noise(100), 1, 48000, nFormat),
                           std::ios::binary);
        const std::string strTrue(std::istreambuf_iterator<char>(file), {});
        for (std::size_t nAt = 0; nAt < 64; nAt += 4)
            for (const char cFilling : {'\0', '\xff'})
                all.push_back({strKind + " with " + std::to_string(int(cFilling)) + " at " +
                                   std::to_string(nAt),
                               std::string(strTrue).replace(nAt, 4, 4, cFilling), false});
        for (const std::size_t nSize :
             {std::size_t{0}, std::size_t{1}, std::size_t{11}, std::size_t{40}, strTrue.size() / 2})
            all.push_back(
                {strKind + " cut at " + std::to_string(nSize), strTrue.substr(0, nSize), true});
    }
    return all;
}

bool HasAHundredSamples(const std::string& strFile)
{
    SF_INFO info{};
    SNDFILE* const pFile = sf_open(strFile.c_str(), SFM_READ, &info);
    if (pFile == nullptr)
        return false;
    std::vector<double> samples(static_cast<std::size_t>(info.channels) * 100);
    const bool fRead = sf_readf_double(pFile, samples.data(), 100) == 100;
    sf_close(pFile);
    return fRead;
}

TEST_F(Hostile, SoundFilesThatLieAreNotAddedWithoutTheirSamples)
{
    Child server = Start({"--session", m_strSession, "--track", "Vox"});
    int nAdded = 0;
    int nFile = 0;
    for (const LyingSound& sound : LyingSounds(m_folder.Path()))
    {
        const std::string strFile = Path("lie " + std::to_string(++nFile));
        std::ofstream(strFile, std::ios::binary) << sound.strBytes;
        const Fate fate = FateOf(SendScript(Adding("0", "\"" + strFile + "\"", "0,0,100")));
        m_table.Note(sound.strWhat, sound.fCut ? "refused" : "refused, or added whole",
                     NameOf(fate));
        if (fate != Fate::Answered)
        {
            EXPECT_EQ(NameOf(fate), std::string("refused")) << sound.strWhat;
            continue;
        }
        ++nAdded;
        EXPECT_FALSE(sound.fCut) << sound.strWhat;
        EXPECT_TRUE(HasAHundredSamples(strFile)) << sound.strWhat;
    }
    EXPECT_GE(nFile, 140);
    EXPECT_EQ(SendScript(InDocument("print(GetRegionCount(GetTrackID(0)))")).result,
              std::to_string(nAdded) + "\n");
    server->Terminate();
    EXPECT_EQ(server->WaitForEnd(kAnyTime), 0);
    EXPECT_EQ(RunToEnd({"--list-session", m_strSession}).nExitCode, 0);
}

TEST_F(Hostile, NothingOfTheSandboxIsThere)
{
    const Child server = Start({});
    for (const char* szAbsent : {"os", "io", "require", "load", "dofile", "loadfile", "debug",
                                 "package", "coroutine", "setmetatable", "string.dump"})
        EXPECT_EQ(SendScript("print(" + std::string(szAbsent) + ")").result, "nil\n") << szAbsent;
}

TEST_F(Hostile, EventsThatAreNoScriptsAreRefused)
{
    const Child server = Start({});
    for (const DescType nType : {DescType(0), DescType(typeChar), DescType(typeUTF8Text),
                                 DescType(typeNull), DescType('\0\0\0\1'), DescType(0xFFFFFFFF)})
        for (const std::size_t nBytes : {0u, 1u, 7u, 4096u, 1u << 20})
        {
            const CScriptAnswer answer = SendBytes(nType, std::string(nBytes, '\xd8'));
            m_table.Note(std::to_string(nBytes) + " bytes of type " + std::to_string(nType),
                         "not run", std::to_string(answer.nStatus));
            EXPECT_NE(answer.nStatus, noErr) << nType << ' ' << nBytes;
        }
    for (const std::size_t nBytes : {1u, 3u, 4095u, (1u << 20) + 1})
        EXPECT_NE(SendBytes(typeUnicodeText, std::string(nBytes, 'x')).nStatus, noErr) << nBytes;
    EXPECT_EQ(SendScript("print(1)").result, "1\n");
}

} // namespace
} // namespace TarvaneTest
