#include "apps/session/SessionTool.h"

#include "apps/session/Diff.h"
#include "apps/session/Dump.h"
#include "apps/session/EntryPath.h"
#include "apps/session/EntryText.h"
#include "apps/session/Json.h"
#include "apps/session/SessionFile.h"
#include "apps/session/SessionScan.h"
#include "apps/session/ToArdour.h"
#include "apps/session/ToEdl.h"
#include "apps/session/ToRpp.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>
#include <system_error>

namespace Tarvane::Session
{

namespace
{

constexpr int kExitFlawed = kExitFailed;

struct Options
{
    std::string strFile;
    std::string strOther; // the second file, or the one to write
    std::string strPath = "/";
    std::size_t nDepth = std::numeric_limits<std::size_t>::max();
};

std::string FlawOf(const std::string& strFile, const Flaw& flaw)
{
    return strFile + ": " + FlawText(flaw);
}

// What the records held before they broke off has been shown; this says that there was more.
int ReportBrokenOff(const LoadedSession& session, const std::string& strFile)
{
    if (session.fWhole)
        return kExitDone;
    const auto scanned = Scan(ReadSessionBytes(strFile));
    std::cerr << FlawOf(strFile, *scanned.flaw) << std::endl;
    return kExitFlawed;
}

int RunDump(const Options& options)
{
    const auto steps = ParsePath(options.strPath);
    const LoadedSession session = LoadSession(options.strFile);
    const CParameter* pTop = FindEntry(*session.pRoot, steps);
    if (!pTop)
        throw CUsageError("nothing stands at " + FormatPath(steps) + " in " + options.strFile +
                          ".");
    Dump(*pTop, options.nDepth, std::cout);
    return ReportBrokenOff(session, options.strFile);
}

void PrintNames(const ScannedSession& session)
{
    std::cout << "\n     token       uses  name\n";
    for (std::size_t nToken = 0; nToken < session.names.size(); ++nToken)
    {
        char line[64];
        std::snprintf(line, sizeof line, "%10zu %10llu  ", nToken,
                      static_cast<unsigned long long>(session.statistics.uses[nToken]));
        std::cout << line << '"' << PrintableText(session.names[nToken], "\"") << "\"\n";
    }
}

void PrintTypes(const Statistics& statistics)
{
    std::cout << "\ntype         count        bytes\n";
    for (int nType = 1; nType < Statistics::kTypes; ++nType)
    {
        if (statistics.count[nType] == 0)
            continue;
        char line[64];
        std::snprintf(line, sizeof line, "%-7s %10llu %12llu\n", TypeName(nType),
                      static_cast<unsigned long long>(statistics.count[nType]),
                      static_cast<unsigned long long>(statistics.bytes[nType]));
        std::cout << line;
    }
}

int RunStat(const Options& options)
{
    const std::string bytes = ReadSessionBytes(options.strFile);
    const ScannedSession session = ScanAnnounced(options.strFile, bytes);
    if (session.flaw && session.nRootOffset == 0)
        throw CUsageError(FlawOf(options.strFile, *session.flaw) + ".");
    std::cout << "bytes         " << bytes.size() << "\nheader        " << session.nRootOffset
              << "\nrecords       " << bytes.size() - session.nRootOffset << "\nnames         "
              << session.names.size() - 1 << "\nlevels        " << session.statistics.nDeepest
              << "\ndeepest block "
              << (session.statistics.strDeepestPath.empty() ? "/"
                                                            : session.statistics.strDeepestPath)
              << "\nmost entries  " << session.statistics.nMostChildren << '\n';
    PrintTypes(session.statistics);
    PrintNames(session);
    if (!session.flaw)
        return kExitDone;
    std::cerr << FlawOf(options.strFile, *session.flaw) << "; counted up to there" << std::endl;
    return kExitFlawed;
}

int RunVerify(const Options& options)
{
    const ScannedSession session =
        ScanAnnounced(options.strFile, ReadSessionBytes(options.strFile));
    if (session.flaw)
    {
        std::cout << FlawOf(options.strFile, *session.flaw) << '\n';
        return kExitFlawed;
    }
    std::cout << options.strFile << ": fine\n";
    return kExitDone;
}

void Replace(const std::string& strFile, const std::string& strBytes)
{
    try
    {
        ReplaceFile(strFile, strBytes);
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

int RunToJson(const Options& options)
{
    const LoadedSession session = LoadSession(options.strFile);
    if (options.strOther.empty())
        WriteJson(*session.pRoot, std::cout);
    else
    {
        std::ostringstream text;
        WriteJson(*session.pRoot, text);
        Replace(options.strOther, text.str());
    }
    return ReportBrokenOff(session, options.strFile);
}

std::string ReadText(const std::string& strFile)
{
    if (strFile == "-")
        return {std::istreambuf_iterator<char>(std::cin), {}};
    try
    {
        return ReadFile(strFile, std::numeric_limits<std::size_t>::max());
    }
    catch (const std::system_error& error)
    {
        throw CUsageError(error.what());
    }
}

int RunFromJson(const Options& options)
{
    CParameterBlock root;
    ReadJson(ReadText(options.strFile), root);
    SaveSession(root, options.strOther);
    return kExitDone;
}

int RunDiff(const Options& options)
{
    const LoadedSession first = LoadSession(options.strFile);
    const LoadedSession second = LoadSession(options.strOther);
    const std::size_t nDifferences = Diff(*first.pRoot, *second.pRoot, std::cout);
    const int nFlaws = std::max(ReportBrokenOff(first, options.strFile),
                                ReportBrokenOff(second, options.strOther));
    return nDifferences > 0 ? kExitFlawed : nFlaws;
}

} // namespace

int RunSession(int argc, char** argv)
{
    CLI::App app("Prints, checks, compares and converts binary session files.", "tarvane-session");
    AddCommonOptions(app, "the files differ or one is flawed");
    app.require_subcommand(1);
    Options options;
    int (*run)(const Options&) = nullptr;
    const auto add = [&](const char* pName, const char* pHelp, int (*body)(const Options&))
    {
        CLI::App* pCommand = app.add_subcommand(pName, pHelp);
        pCommand->callback([&run, body] { run = body; });
        return pCommand;
    };
    const auto addFile = [&](CLI::App* pCommand)
    { pCommand->add_option("file", options.strFile, "The session file.")->required(); };

    CLI::App* pDump = add("dump", "Print the tree with types, names and values.", RunDump);
    addFile(pDump);
    pDump->add_option("--depth", options.nDepth, "Open this many levels of blocks.");
    pDump->add_option("--path", options.strPath, "Print what stands here, for example A/B[2]/C.");

    addFile(add("stat", "Print sizes, counts, the names and the deepest path.", RunStat));
    addFile(add("verify", "Print offset, reason and path of the first flaw.", RunVerify));

    CLI::App* pToJson = add("to-json", "Write the tree as JSON, without loss.", RunToJson);
    addFile(pToJson);
    pToJson->add_option("output", options.strOther, "The JSON file; without it, standard output.");

    CLI::App* pFromJson = add("from-json", "Make a session file of such JSON.", RunFromJson);
    pFromJson->add_option("json", options.strFile, "The JSON file; - for standard input.")
        ->required();
    pFromJson->add_option("output", options.strOther, "The session file to write.")->required();

    CLI::App* pDiff = add("diff", "Print what differs between two sessions.", RunDiff);
    addFile(pDiff);
    pDiff->add_option("other", options.strOther, "The session file to compare with.")->required();

    std::function<int()> convert;
    AddToArdour(app, convert);
    AddToEdl(app, convert);
    AddToRpp(app, convert);

    return RunProgram(app, argc, argv,
                      [&]
                      {
                          const int nCode = run ? run(options) : convert();
                          std::cout.flush();
                          if (!std::cout)
                              throw CUsageError("the output could not be written.");
                          return nCode;
                      });
}

} // namespace Tarvane::Session
