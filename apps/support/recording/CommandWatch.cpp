#include "apps/support/recording/CommandWatch.h"

#include "utils/UnicodeText.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Tarvane
{
namespace
{

// Empty when there is no such text.
std::optional<std::string> TextOf(const std::vector<SeenParameter>& parameters, AEKeyword nKeyword)
{
    for (const SeenParameter& parameter : parameters)
    {
        if (parameter.nKeyword != nKeyword || parameter.nType != typeUnicodeText)
            continue;
        std::u16string units(parameter.bytes.size() / sizeof(char16_t), u'\0');
        if (!units.empty())
            std::memcpy(units.data(), parameter.bytes.data(), units.size() * sizeof(char16_t));
        return Utf8FromUtf16(units);
    }
    return std::nullopt;
}

} // namespace

void CCommandWatch::Add(const SeenEvent& event)
{
    const std::lock_guard lock(m_mutex);
    m_sent.push_back({event.nNumber,
                      {TextOf(event.parameters, keyDirectObject).value_or(std::string()),
                       std::chrono::steady_clock::now()}});
}

void CCommandWatch::Add(const SeenReply& reply)
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_sent.begin(), m_sent.end(), [&](const Sent& sent)
                                    { return sent.nNumber == reply.nNumber; });
    if (found == m_sent.end())
        return;
    const std::optional<std::string> result = TextOf(reply.parameters, 'Rslt');
    m_ended.push_back({std::move(found->command.strScript),
                       result.value_or(std::string()).substr(0, kMostResult),
                       TextOf(reply.parameters, 'Errr').value_or(std::string()), reply.nStatus,
                       result.has_value()});
    m_sent.erase(found);
    if (m_ended.size() > kMostKept)
        m_ended.erase(m_ended.begin());
}

std::vector<SeenCommand> CCommandWatch::Take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_ended, {});
}

std::optional<CommandUnderWay> CCommandWatch::UnderWay() const
{
    const std::lock_guard lock(m_mutex);
    return m_sent.empty() ? std::nullopt : std::optional(m_sent.front().command);
}

} // namespace Tarvane
