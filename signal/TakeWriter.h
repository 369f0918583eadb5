// The writer's half of a capture: from the ring's samples to finished takes in the journal.
#pragma once

#include "signal/TakeFile.h"
#include "signal/TakeFormat.h"
#include "signal/TakeJournal.h"
#include "signal/TakeQueue.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Tarvane
{

/// One thread at a time.
class CTakeWriter
{
public:
    /// An empty folder is DefaultCaptureFolder(), which is made where it is missing. The log gets a
    /// line for what goes wrong with a journal; a take does not fail for that.
    CTakeWriter(const std::filesystem::path& folder, const std::string& strUuid,
                std::function<void(const std::string&)> log);

    void SetFormat(const CTakeFormat& format) { m_format = format; }
    const CTakeFormat& Format() const { return m_format; }
    const std::filesystem::path& Folder() const { return m_folder; }

    /// Begins a take. The one answered is running, or has failed.
    const CTake& Begin(std::uint32_t nNumber, double dPosition);
    /// False from the first sample on that the disk does not take.
    bool Write(const void* pInterleaved, std::uint64_t nFrames);
    /// Frames behind the take that began last, which may be over, could not be kept.
    void Lose(std::uint64_t nFrames);
    /// Whether there is a take that takes samples.
    bool IsOpen() const { return m_pFile != nullptr; }
    const CTake& Current() const { return m_take; }
    /// The take that is whole now, its file under its own name. Failed when there is not a sample
    /// in it, or when the disk has not taken its header: then the next start finds and mends it.
    CQueuedTake End();

    // --- The journal

    const std::string& Uuid() const { return m_pJournal->Uuid(); }
    void Settle(const CQueuedTake& queued);
    /// Whether all of it is on the disk, once what is not has been tried again.
    bool CatchUp() { return m_pJournal->CatchUp(); }
    /// Turns to this folder and the journal of this UUID there, with everything in the queue; no
    /// take may be open. False when another instance holds that one: the instance then has a new
    /// UUID of its own.
    bool TurnTo(const std::filesystem::path& folder, const std::string& strUuid, CTakeQueue& queue);
    /// What the journal holds beyond what the queue was given, its files mended.
    std::vector<CQueuedTake> Recover();

private:
    void HoldJournal();
    void Note(bool fWritten);
    void NoteEnd();
    void SetFolder(const std::filesystem::path& folder);

    std::filesystem::path m_folder;
    bool m_fMakeFolder = false;
    std::function<void(const std::string&)> m_log;
    CTakeFormat m_format;
    std::unique_ptr<CTakeJournal> m_pJournal;
    std::unique_ptr<CTakeFile> m_pFile;
    CTake m_take;
    std::uint64_t m_nJournal = 0;
    std::set<std::uint64_t> m_known; ///< takes of the journal that are in the queue, or were
};

} // namespace Tarvane
