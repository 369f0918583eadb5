// The journal of one instance's takes, beside its captures.
#pragma once

#include "signal/Take.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Tarvane
{

class CTakeFile;

/// A line for each thing that happens to a take, each written at once and on the disk when the
/// operation returns:
///
///   <CRC-32 of the JSON, 8 hexadecimal digits> <JSON on one line>\n
///
///   {"take":N,"begun":{"file":...,"inode":...,"stem":...,"guide":...,"position":P,"rate":R}}
///   {"take":N,"finished":{"file":...,"guide":...,"position":P,"rate":R,"frames":F,"lost":L,
///                         "time":T}}
///   {"take":N,"cut":{"frames":F,"lost":L,"time":T}}
///   {"take":N,"outcome":"delivered"|"duplicate"|...|"forgotten","words":...,"expected":X}
///
/// "begun" comes again when another file is about to take the place of an unfinished one. "cut"
/// tells of one that could not be finished and what was lost of it by then. A line
/// that is cut off or flawed is passed over. Any two of the lines of a take are enough: the last
/// outcome says whether it is settled; the last "finished", or else the last "begun" and what is in
/// the folder, where it is. A second "finished" tells of frames that were lost behind the take
/// since the first. Its time is when the line was written, in seconds since 1970.
///
/// The journal of an instance is called ".takes-<uuid>.journal". Who holds it has it locked, so
/// that two instances never write one, in whatever process they are; the operating system gives it
/// back when its holder is killed. It is made with its first line, and goes with its holder when
/// nothing in it is open any more and no loss is to be told.
///
/// One thread at a time.
struct CJournalTake
{
    std::uint64_t nTake = 0; ///< its number in the journal
    bool fFinished = false;
    std::filesystem::path file; ///< the hidden one while it is not finished
    std::filesystem::path guide;
    std::uint64_t nInode = 0;
    std::string strStem;
    double dPosition = 0;
    double dRate = 0;
    std::uint64_t nFrames = 0;
    std::uint64_t nLostFrames = 0;  ///< behind it, that could not be kept
    std::int64_t nFinishedTime = 0; ///< or when it was cut, in seconds since 1970
    std::string strOutcome;         ///< the last; empty when there was none
    std::string strWords;
};

class CTakeJournal
{
public:
    /// The outcome that ends the life of a take in the journal without a server.
    static constexpr const char* kForgotten = "forgotten";
    /// How long frames that were lost are told of.
    static constexpr std::chrono::hours kLossTold{24};

    /// Touches nothing.
    CTakeJournal(const std::filesystem::path& folder, const std::string& strUuid);
    /// Gives the journal back, and removes it when nothing in it is open or told of by Losses().
    ~CTakeJournal();
    CTakeJournal(const CTakeJournal&) = delete;
    CTakeJournal& operator=(const CTakeJournal&) = delete;

    const std::string& Uuid() const { return m_strUuid; }
    const std::filesystem::path& Path() const { return m_path; }
    /// 36 characters: hexadecimal digits in groups of 8, 4, 4, 4 and 12. Nothing else is put into
    /// the name of a file.
    static bool IsUuid(const std::string& strUuid);
    static std::string NewUuid();

    /// Takes the journal that is there, and has its folder in the index. True as well when there is
    /// none yet; false when somebody else holds it for more than a moment, or it cannot be opened
    /// and read.
    bool Hold();
    /// The same, but makes it where there is none, so that nobody else can take it from now on.
    /// True as well when it cannot be made, for which Failure() has the reason.
    bool Claim();
    /// Whether somebody holds this journal now.
    static bool IsHeld(const std::filesystem::path& journal);
    /// What is in it and neither settled nor forgotten, in the order of the takes. Refused ones are
    /// among them.
    std::vector<CJournalTake> Open() const;
    /// The takes behind which frames were lost within kLossTold, in their order, whatever has
    /// become of them; but not those that were forgotten.
    std::vector<CJournalTake> Losses() const;

    /// These hold the journal first, and make it where there is none. False, with a reason in
    /// Failure(), when the line did not get to the disk. Begun answers 0 then, and its take is not
    /// known here; Replaced has said nothing either; the lines of the others are kept for CatchUp,
    /// or the next line.
    std::uint64_t Begun(const CTakeFile& file, const std::string& strStem, const CTake& take);
    /// The file of this take, which is not finished, is about to be the one of that inode.
    bool Replaced(CJournalTake take, ino_t nInode);
    bool Finished(std::uint64_t nTake, const CTake& take);
    bool Cut(std::uint64_t nTake, const CTake& take);
    /// A finished take of another journal; its number in this one, or 0.
    std::uint64_t Moved(const CTake& take);
    bool Ended(std::uint64_t nTake, const std::string& strOutcome, const std::string& strWords,
               double dExpectedPosition);
    const std::string& Failure() const { return m_strFailure; }
    /// Tries once more to write what did not get to the disk. True when nothing of that is left.
    bool CatchUp();

    /// The journals in a folder.
    static std::vector<std::filesystem::path> In(const std::filesystem::path& folder);
    static std::string UuidOf(const std::filesystem::path& journal);

private:
    bool Make();
    bool Append(const std::string& strJson);
    bool AppendBegun(const CJournalTake& take);
    std::vector<CJournalTake> TakesThat(bool (*fnAre)(const CJournalTake&)) const;
    void GiveBack();

    const std::filesystem::path m_folder;
    const std::string m_strUuid;
    const std::filesystem::path m_path;
    int m_nFile = -1;
    std::uint64_t m_nLastTake = 0;
    std::string m_strFailure;
    std::string m_strUnwritten; ///< whole lines
};

/// Every folder of this user in which an instance has kept a journal, whether or not there is one
/// now, as the index in TakeStateFolder() has them. A line of it that is cut off or flawed is
/// passed over, and comes back when a journal of its folder is held. Concurrent writers are safe.
std::vector<std::filesystem::path> JournalFolders();
void NoteJournalFolder(const std::filesystem::path& folder);

/// Brings a take of this journal that was not finished to its end: mends its file, or finds it
/// under the name that it had been given; the line that it is finished is the caller's. A process
/// that is killed at any instant of this leaves what the next call brings to its end. False when
/// there is nothing left of it. Throws std::runtime_error, in words for the user, when there is a
/// file that cannot be read or mended, or no telling whether there is one.
bool RecoverTake(CJournalTake& take, CTakeJournal& journal);

} // namespace Tarvane
