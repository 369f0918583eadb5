#include "apps/support/recording/CommandWatch.h"

#include "apps/support/recording/ScriptCalls.h"
#include "utils/UnicodeText.h"

#include <algorithm>
#include <cstring>
#include <ctime>
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

// One line, and no long one.
std::string ShortNameOf(const std::string& strScript)
{
    constexpr std::size_t kLongestName = 120;
    const std::string strName = WhatItAsks(strScript);
    return strName.substr(0, std::min(kLongestName, strName.find('\n')));
}

} // namespace

std::string TextOf(const CommandUnderWay& command)
{
    const auto time = std::chrono::steady_clock::now() - command.since;
    const std::time_t nSince = std::chrono::system_clock::to_time_t(
        std::chrono::system_clock::now() -
        std::chrono::duration_cast<std::chrono::system_clock::duration>(time));
    tm parts{};
    localtime_r(&nSince, &parts);
    char szClock[16];
    std::strftime(szClock, sizeof szClock, "%H:%M:%S", &parts);
    return ShortNameOf(command.strScript) + ", since " + szClock + ", for " +
           std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count()) + " s";
}

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
    const auto found =
        std::find_if(m_sent.begin(), m_sent.end(),
                     [&](const Sent& sent) { return sent.nNumber == reply.nNumber; });
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
