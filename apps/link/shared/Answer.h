// What a command has to say, and the one way in which it is said.
#pragma once

#include "apps/link/shared/Outcome.h"
#include "apps/support/recording/CommandWatch.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Tarvane::Link
{

struct Answer
{
    Outcome outcome = Outcome::Done;
    /// For people: whole lines, or the bytes that a script printed.
    std::string strText{};
    /// For programs, beside what every answer says of itself.
    nlohmann::ordered_json fields = nlohmann::ordered_json::object();
    /// Why the server did not do as it was asked, when the script link does not tell it.
    std::string strRefusal{};
};

/// Takes the words of a reply without a result, which the script link passes over, into the answer:
/// the outcome is the server's error then.
void NoteRefusal(Answer& answer, const std::vector<SeenCommand>& commands);

/// One line of ASCII: what is more is escaped, control characters among it. What is no UTF-8, such
/// as a name that was cut in two, is shown with U+FFFD.
std::string JsonLine(const nlohmann::ordered_json& json);

/// The answer as an object: "command", "outcome", "exitCode", the two messages as "lastError" and
/// "advice", "refusal" where there is one, and the fields.
nlohmann::ordered_json ToJson(const std::string& strCommand, const Answer& answer,
                              const CTarvaneScript& link);

/// The two message lines as the view shows them, on the standard error stream, and the server's
/// words or what to do when they do not say it.
void TellMessages(const Answer& answer, const CTarvaneScript& link);

/// Writes to the standard output at once, control characters as points. Throws std::runtime_error
/// when it takes no more.
void Print(const std::string& strText);

} // namespace Tarvane::Link
