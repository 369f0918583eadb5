#pragma once

#include <string>
#include <vector>

class CFileName;

/// The link to the server, the separate audio-editing application. Each operation sends one Lua
/// script as an Apple event, waits for the reply and reads what the script printed.
///
/// Main thread only, and every operation but SplitResult blocks it until the server answers or the
/// event's timeout ends: the platform's default timeout, unless an operation takes its own.
/// Nothing is kept between two commands but the fields below, so a server that was restarted is
/// found again by the next command.
///
/// `fAudioSuite` chooses the document that a script works on: the AudioSuite document if true, else
/// the script document. Track numbers are places in the server's track list, from 0. Positions are
/// samples. When the document cannot be selected a script does nothing, and that is no failure.
///
/// Failures are told by an operation's result and, for the user, in two message strings. The
/// strings are emptied when a command goes out, unless m_fUserError holds them.
///
/// Scripts and numbers read the same in every locale of C and of C++.
class CTarvaneScript
{
public:
    /// True while the two message strings hold words that must outlive the next commands: the
    /// notice of a duplicate capture. ExportSelectedRegion, RenderSelectedRegion, CreateGDX,
    /// CreateSpreader and SendFile end that on entry, and so does an error text from the server.
    bool m_fUserError = false;
    /// First line for the user. UTF-8; empty when there is nothing to say.
    std::string m_strLastError;
    /// Second line for the user. UTF-8.
    std::string m_strAdvice;
    /// Summary of the last render.
    std::string m_strSelectedRegion1;
    /// Summary of the last export.
    std::string m_strSelectedRegion2;

    /// Sends a script and waits for what it printed.
    ///
    /// szScript is UTF-8 and is sent as it is. Text that is not UTF-8 is not sent: paramErr (-50).
    ///
    /// *ppResult is null on failure; on success the printed text, NUL-terminated UTF-8, empty if
    /// nothing was printed. The caller frees it with `delete[]` on every path. What cannot be
    /// turned into UTF-8 reads as empty: a reply with an unpaired surrogate, and one of exactly 100
    /// characters of three bytes each, which leave the terminator no room in a short reply's
    /// buffer.
    ///
    /// nTimeoutTicks counts 1/60 seconds; -1 is the platform's default.
    ///
    /// Answers the Apple event status, a sign-extended 16-bit number: 0 when the event went out and
    /// a result came back. Otherwise m_strLastError says why, and for a server that is not running
    /// (-600) m_strAdvice what to do. An error text of the server is no failure: it stands in
    /// m_strLastError while the status is 0.
    int SendCommand(const char* szScript, char** ppResult, int nTimeoutTicks);

    /// Reads a printed result: the first non-empty line is the count of items, every later one an
    /// item. Lines end at any run of line feeds and carriage returns. Empties *pstrItems first.
    ///
    /// A count that does not match the items ends the process, in every build. So does a line of
    /// more than 999 bytes, which makes two items, unless the count allowed for it.
    void SplitResult(const char* szResult, std::vector<std::string>* pstrItems);

    /// Appends the names of the server's tracks, UTF-8, in order. pstrTracks must come in empty.
    /// False if none was listed; a document without tracks is told in the words of no document.
    bool ListTracks(bool fAudioSuite, std::vector<std::string>* pstrTracks);

    /// ListTracks with a timeout in ticks of 1/60 second. Answers SendCommand's status, which is 0
    /// also when the server had no tracks to list.
    int ListTracksWithTimeout(bool fAudioSuite, std::vector<std::string>* pstrTracks,
                              int nTimeoutTicks);

    /// Has the server write its selected region to a file (AudioSuite: the region of the process
    /// created last), and names that file. nSampleRate is not read. False leaves *pFile alone, and
    /// m_strLastError says what is missing, if the server said it.
    bool ExportSelectedRegion(bool fAudioSuite, long nSampleRate, CFileName* pFile);

    /// Has the server render its selected region (AudioSuite: the region of the process created
    /// last), and tells where it lies, in samples. False leaves *pStart and *pEnd alone.
    /// nSampleRate: the caller's rate in samples per second, or -1 for none. A server that works at
    /// another rate is a warning in m_strLastError, and the answer is true all the same.
    bool RenderSelectedRegion(bool fAudioSuite, long nSampleRate, long long* pStart,
                              long long* pEnd);

    /// Sets up the server's guide/dub alignment process, from two stretches of two tracks onto a
    /// third. True when the command's status is 0, whether or not the server made the process.
    bool CreateGDX(bool fAudioSuite, int nGuideTrack, long long nGuideStart, long long nGuideEnd,
                   int nDubTrack, long long nDubStart, long long nDubEnd, int nAlignedTrack);

    /// Sets up the server's single-input process. The fifth argument is not read. True when the
    /// command's status is 0, whether or not the server made the process.
    bool CreateSpreader(bool fAudioSuite, int nInputTrack, long long nStart, long long nEnd,
                        int nUnused, int nOutputTrack);

    /// Removes every marker area and then every region of a track.
    void ClearTrack(bool fAudioSuite, int nTrack);

    /// True if the track has the audio already; then the messages say so and m_fUserError is set.
    /// False also when the server could not be asked. The three positions are cut to whole samples
    /// as in SendFile.
    bool CheckDuplicateRegion(bool fAudioSuite, int nTrack, CFileName* pFile, double dPosition,
                              double dStart, double dEnd);

    /// The offset of the server's timeline against the host's, in seconds; 0.0 if it could not be
    /// asked for.
    double GetLinkSMPTEOffset(bool fAudioSuite);

    /// Adds the stretch from dStart to dEnd of the file as a region at dPosition of the track, and
    /// moves the server's display to it. Positions are samples, cut toward zero; beyond 64 bits the
    /// nearest 64-bit number is sent, and 0 for what is not a number. The path is quoted in the
    /// script as it is: one with a double quote or a backslash in it is the caller's to avoid.
    /// nIndexMask: each set bit adds its number to an index list; 0 or less sends no list.
    /// Answers SendCommand's status, which does not tell whether the server added the region.
    int SendFile(bool fAudioSuite, int nTrack, CFileName* pFile, double dPosition, double dStart,
                 double dEnd, int nIndexMask);

    /// The server's count of updates; 0 if it could not be asked for.
    long GetUpdateCount();

private:
    void TellMissing(const std::string& strStatus);
};
