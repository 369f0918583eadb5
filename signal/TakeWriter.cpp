#include "signal/TakeWriter.h"

#include "signal/TakeFolder.h"

namespace fs = std::filesystem;

namespace Tarvane
{

CTakeWriter::CTakeWriter(const fs::path& folder, const std::string& strUuid,
                         std::function<void(const std::string&)> log)
    : m_log(std::move(log))
{
    SetFolder(folder);
    m_pJournal = std::make_unique<CTakeJournal>(m_folder, strUuid);
}

void CTakeWriter::SetFolder(const fs::path& folder)
{
    m_fMakeFolder = folder.empty();
    m_folder = folder.empty() ? DefaultCaptureFolder() : fs::absolute(folder).lexically_normal();
}

void CTakeWriter::Note(bool fWritten)
{
    if (!fWritten)
    {
        m_log(m_pJournal->Failure());
    }
}

// An instance that is a copy of another finds its journal held: it goes on under a UUID of its own.
void CTakeWriter::HoldJournal()
{
    if (!m_pJournal->Claim())
    {
        m_pJournal = std::make_unique<CTakeJournal>(m_folder, CTakeJournal::NewUuid());
    }
}

const CTake& CTakeWriter::Begin(std::uint32_t nNumber, double dPosition)
{
    m_take = CTake();
    m_take.nNumber = nNumber;
    m_take.guide = m_format.guide;
    m_take.dPosition = dPosition;
    m_take.dRate = m_format.nRate;
    m_nJournal = 0;
    try
    {
        if (m_fMakeFolder)
        {
            fs::create_directories(m_folder);
        }
        m_pFile = std::make_unique<CTakeFile>(m_folder, m_format, dPosition);
        m_take.file = m_pFile->Path();
        HoldJournal();
        m_nJournal = m_pJournal->Begun(*m_pFile, m_format.strStem, m_take);
        Note(m_nJournal != 0);
        m_known.insert(m_nJournal);
    }
    catch (const std::exception& error)
    {
        m_take.state = TakeState::Failed;
        m_take.strFailure = error.what();
    }
    return m_take;
}

bool CTakeWriter::Write(const void* pInterleaved, std::uint64_t nFrames)
{
    const std::uint64_t nWritten = m_pFile->Write(pInterleaved, nFrames);
    m_take.nFrames += nWritten;
    m_take.nLostFrames += nFrames - nWritten;
    return nWritten == nFrames;
}

void CTakeWriter::Lose(std::uint64_t nFrames)
{
    m_take.nLostFrames += nFrames;
    if (nFrames > 0 && !IsOpen())
    {
        NoteEnd();
    }
}

// A take that could not be finished is found again at the next start.
void CTakeWriter::NoteEnd()
{
    if (m_nJournal == 0 || m_take.nFrames == 0)
    {
        return;
    }
    if (m_take.state == TakeState::Waiting)
    {
        Note(m_pJournal->Finished(m_nJournal, m_take));
    }
    else if (m_take.nLostFrames > 0)
    {
        Note(m_pJournal->Cut(m_nJournal, m_take));
    }
}

CQueuedTake CTakeWriter::End()
{
    if (m_take.nFrames > 0 && m_pFile->Publish())
    {
        m_take.file = m_pFile->Path();
        m_take.state = TakeState::Waiting;
    }
    else
    {
        m_take.state = TakeState::Failed;
    }
    m_take.strFailure = m_pFile->Failure();
    m_pFile.reset();
    NoteEnd();
    if (m_nJournal != 0 && m_take.nFrames == 0)
    {
        Note(m_pJournal->Ended(m_nJournal, CTakeJournal::kForgotten, m_take.strFailure, 0));
    }
    return {m_take, m_nJournal, Uuid()};
}

void CTakeWriter::Settle(const CQueuedTake& queued)
{
    if (queued.nJournal != 0 && queued.strJournalUuid == Uuid())
    {
        const CTake& take = queued.take;
        Note(m_pJournal->Ended(queued.nJournal, TakeOutcomeWord(*take.outcome), take.strWords,
                               take.dExpectedPosition));
    }
}

bool CTakeWriter::TurnTo(const fs::path& folder, const std::string& strUuid, CTakeQueue& queue)
{
    SetFolder(folder);
    auto pJournal = std::make_unique<CTakeJournal>(m_folder, strUuid);
    if (pJournal->Path() == m_pJournal->Path())
    {
        return true;
    }
    const bool fHeld = pJournal->Hold();
    if (!fHeld)
    {
        pJournal = std::make_unique<CTakeJournal>(m_folder, CTakeJournal::NewUuid());
    }
    pJournal.swap(m_pJournal);
    m_nJournal = 0;
    m_known.clear();
    queue.ForEach(
        [&](CQueuedTake& queued)
        {
            const std::uint64_t nBefore = queued.nJournal;
            queued.nJournal = m_pJournal->Moved(queued.take);
            queued.strJournalUuid = Uuid();
            Note(queued.nJournal != 0);
            m_known.insert(queued.nJournal);
            if (queued.nJournal != 0 && nBefore != 0)
            {
                pJournal->Ended(nBefore, CTakeJournal::kForgotten, "", 0);
            }
        });
    return fHeld;
}

std::vector<CQueuedTake> CTakeWriter::Recover()
{
    std::vector<CQueuedTake> found;
    if (!m_pJournal->Hold())
    {
        return found;
    }
    for (CJournalTake& kept : m_pJournal->Open())
    {
        if (kept.strOutcome == TakeOutcomeWord(TakeOutcome::Refused) ||
            !m_known.insert(kept.nTake).second)
        {
            continue;
        }
        const bool fFinished = kept.fFinished;
        const std::uint64_t nWritten = kept.nFrames;
        CTake take;
        take.fRecovered = true;
        try
        {
            if (!RecoverTake(kept, *m_pJournal))
            {
                m_log("nothing is left of the take " + kept.file.string());
                Note(m_pJournal->Ended(kept.nTake, CTakeJournal::kForgotten, "", 0));
                continue;
            }
        }
        catch (const std::exception& error)
        {
            m_log(error.what());
            continue;
        }
        take.file = kept.file;
        take.guide = kept.guide;
        take.dPosition = kept.dPosition;
        take.dRate = kept.dRate;
        take.nFrames = kept.nFrames;
        take.nLostFrames = kept.nLostFrames;
        if (!fFinished)
        {
            // What the writer of the file had taken, and the disk had not.
            take.nLostFrames += nWritten > kept.nFrames ? nWritten - kept.nFrames : 0;
            Note(m_pJournal->Finished(kept.nTake, take));
            m_log("found the take " + take.file.string() + ", which was not finished");
        }
        found.push_back({take, kept.nTake, Uuid()});
    }
    return found;
}

} // namespace Tarvane
