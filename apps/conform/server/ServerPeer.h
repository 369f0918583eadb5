// The server under examination, as it shows itself on the bus.
#pragma once

#include "apps/conform/shared/Rule.h"
#include "apps/support/event/ScriptExchange.h"

#include <MacTypes.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Tarvane::Conform
{

/// One text of a reply.
struct ReplyText
{
    FourCharCode nType = 0; ///< of the descriptor
    std::size_t nBytes = 0;
    std::string strText; ///< UTF-8; what is not well formed is U+FFFD
};

struct Reply
{
    int nStatus = 0; ///< of the event; 0 when an answer came
    std::optional<ReplyText> result;
    std::optional<ReplyText> error;
};

/// Sends scripts as the link does and shows the replies as they are. One thread.
class CServerPeer
{
public:
    /// Every command waits for so many ticks of 1/60 second at most.
    explicit CServerPeer(SInt32 nTimeoutTicks) : m_nTimeoutTicks(nTimeoutTicks) {}

    Reply Send(const std::string& strScript) const;
    /// The last exchange since it was forgotten; nothing when there was none.
    const std::optional<ScriptExchange>& Last() const { return m_last; }
    void ForgetLast() const { m_last.reset(); }
    /// Makes it the last: one that did not go through here.
    void Remember(ScriptExchange exchange) const { m_last = std::move(exchange); }

    // The next three throw CBroken when no reply comes, or one that the link cannot read.

    /// What the script printed. The script may fail.
    std::string Printed(const std::string& strScript) const;
    /// The same of a script that must not fail.
    std::string PrintedWithoutError(const std::string& strScript) const;
    /// The error of a script; empty without one.
    std::string Error(const std::string& strScript) const;

    // A script on the document that the view works on. Throw as above, and CNotExaminable where
    // no document can be selected.

    /// The one line that the body prints.
    std::string Line(const std::string& strBody) const;
    std::string ErrorInDocument(const std::string& strBody) const;
    /// Whether there is a 'Rslt', of whatever kind, in the reply to a script that may fail.
    bool HasResultInDocument(const std::string& strBody) const;

private:
    std::string Selected(const std::string& strBody) const;

    SInt32 m_nTimeoutTicks;
    mutable std::optional<ScriptExchange> m_last;
};

/// The items of a printed list: every line behind the count. Throws CBroken when the lines are not
/// as many as the count says, or one of them is empty or too long for the link.
std::vector<std::string> Items(const std::string& strPrinted);

/// How many regions a track of either document has; none where the document cannot be selected.
/// Throws CBroken as the above do.
double Regions(const CServerPeer& peer, bool fAudioSuite, int nTrack);

/// A number as atol and atof read it. Throws CBroken when the line is none.
double Number(const std::string& strLine);

} // namespace Tarvane::Conform
