#include "apps/link/Watch.h"

#include "apps/link/commands/Commands.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <chrono>
#include <thread>

namespace Tarvane::Link
{

namespace
{

// What one look found.
struct View
{
    Outcome outcome = Outcome::Done;
    std::optional<long> updates;
    std::vector<std::string> tracks;
    std::string strLastError;
    std::string strAdvice;

    bool operator==(const View&) const = default;
};

View Look(CTarvaneScript& link, const Options& options)
{
    View view;
    const long nUpdates = link.GetUpdateCount();
    view.outcome = OutcomeOf(link);
    // A server that does not answer is not asked twice.
    if (view.outcome == Outcome::Done)
    {
        view.updates = nUpdates;
        link.ListTracksWithTimeout(options.fAudioSuite, &view.tracks, options.TimeoutTicks());
        view.outcome = OutcomeOf(link);
    }
    view.strLastError = link.m_strLastError;
    view.strAdvice = link.m_strAdvice;
    return view;
}

std::string TextOf(const View& view, const View* pBefore)
{
    if (!view.updates)
        return {};
    std::string strText = "updates " + std::to_string(*view.updates) + ", tracks " +
                          std::to_string(view.tracks.size()) + "\n";
    if (pBefore == nullptr || pBefore->tracks != view.tracks)
        strText += TrackLines(view.tracks);
    return strText;
}

void Report(const View& view, const View* pBefore, const CTarvaneScript& link,
            const Options& options)
{
    Answer answer{view.outcome, TextOf(view, pBefore)};
    if (view.updates)
        answer.fields = {{"updates", *view.updates}, {"tracks", view.tracks}};
    Print(options.fJson ? JsonLine(ToJson(options.strCommand, answer, link)) : answer.strText);
    TellMessages(answer, link);
}

} // namespace

int Watch(const Options& options)
{
    CTarvaneScript link;
    std::optional<View> before;
    for (long nReports = 0;;)
    {
        View view = Look(link, options);
        if (!before || *before != view)
        {
            Report(view, before ? &*before : nullptr, link, options);
            before = std::move(view);
            if (++nReports == options.nReports)
                return ExitCodeOf(before->outcome);
        }
        std::this_thread::sleep_for(std::chrono::duration<double>(options.dInterval));
    }
}

} // namespace Tarvane::Link
