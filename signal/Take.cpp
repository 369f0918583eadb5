#include "signal/Take.h"

#include <array>

namespace Tarvane
{
namespace
{

constexpr std::array kWords = {"delivered", "duplicate", "refused", "unreachable",
                               "placed without the offset"};

} // namespace

const char* TakeOutcomeWord(TakeOutcome outcome)
{
    return kWords.at(static_cast<std::size_t>(outcome));
}

std::optional<TakeOutcome> TakeOutcomeOf(std::uint8_t nNumber)
{
    return nNumber < kWords.size() ? std::optional(static_cast<TakeOutcome>(nNumber))
                                   : std::nullopt;
}

} // namespace Tarvane
