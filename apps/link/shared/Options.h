// What the command line asks for.
#pragma once

#include <MacTypes.h>

#include <optional>
#include <string>

namespace CLI
{
class App;
}

namespace Tarvane::Link
{

/// A stretch of a sound file and its place on a track.
struct FilePlace
{
    std::string strFile;
    int nTrack = 0;
    double dPosition = 0.0;
    /// Samples; both or neither. Neither is the whole file.
    std::optional<double> start;
    std::optional<double> end;
    int nIndexMask = 0;
};

/// A stretch of a track, in samples.
struct TrackStretch
{
    int nTrack = 0;
    long long nStart = 0;
    long long nEnd = 0;
};

struct Options
{
    bool fAudioSuite = false;
    bool fJson = false;
    bool fTrace = false;
    std::string strRecord;         ///< empty: nothing is recorded
    std::optional<double> timeout; ///< seconds, above 0 and up to 60

    std::string strCommand;

    FilePlace place;                ///< send, duplicate
    TrackStretch guide, dub, input; ///< align, spread
    int nOutputTrack = 0;           ///< align, spread
    int nTrack = 0;                 ///< clear
    std::optional<long> rate;       ///< render, doctor
    std::optional<std::string> script;
    std::optional<std::string> scriptFile;
    double dInterval = 1.0;       ///< watch, seconds
    long nReports = 0;            ///< watch; 0 goes on without end
    std::string strCaptureFolder; ///< doctor; empty checks none
    std::string strSentTake;      ///< takes; at most one of these two
    std::string strForgottenTake;

    /// For operations that take a timeout, in ticks of 1/60 second; -1 is the platform's default.
    SInt32 TimeoutTicks() const;
};

/// Declares the commands and their options; values land in the given object when the app parses.
/// What cannot be used is a parse error.
void DeclareOptions(CLI::App& app, Options& options);

} // namespace Tarvane::Link
