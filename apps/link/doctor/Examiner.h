// Questions to the server under examination, in scripts of the doctor's own.
#pragma once

#include "apps/link/doctor/Findings.h"
#include "apps/link/shared/Options.h"
#include "apps/support/event/ScriptExchange.h"
#include "apps/support/recording/CommandWatch.h"

#include <string>

namespace Tarvane::Link
{

class CExaminer
{
public:
    explicit CExaminer(const Options& options) : m_options(options) {}

    struct Reply
    {
        Outcome outcome = Outcome::Done;
        std::string strPrinted;
        std::string strMessage;  ///< the first message line
        int nStatus = 0;         ///< of the event
        CommandUnderWay asked{}; ///< and since when
        ScriptExchange exchange{};

        /// Printed is exactly this line.
        bool Is(const std::string& strLine) const
        {
            return outcome == Outcome::Done && strPrinted == strLine + "\n";
        }
        /// The server can be asked more.
        bool Answered() const
        {
            return outcome == Outcome::Done || outcome == Outcome::ServerError;
        }
    };

    Reply Ask(const std::string& strScript) const;
    /// Asks for the value of an expression in the selected document. An empty result is a document
    /// that cannot be selected.
    Reply AskDocument(const std::string& strExpression) const;
    /// Whether the server has this function.
    Reply AskType(const std::string& strFunction) const;

    /// Asks whether the first track has the whole of this file already.
    Reply AskDuplicate(const std::string& strPath, int nFrames) const;

    const Options& GetOptions() const { return m_options; }

private:
    const Options& m_options;
};

/// The finding, with what was exchanged to come to it.
Finding Seen(Finding finding, const CExaminer::Reply& reply);

/// The problem that ends an examination: the server has not answered.
Finding NoReplyFinding(const std::string& strCheck, const CExaminer::Reply& reply);

} // namespace Tarvane::Link
