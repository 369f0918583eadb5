// Word of the server whose answer contradicts itself.
#pragma once

#include "apps/support/recording/EventWatch.h"

#include <string>

namespace Tarvane
{

/// The script link ends the process when an answer's count does not match its lines. While an
/// object lives, the process then says on the standard error stream what was asked and answered
/// last, and which program answers now, before it ends. One at a time; it watches events.
class CAnswerWords : public CEventWatcher
{
public:
    CAnswerWords();
    ~CAnswerWords() override;
    CAnswerWords(const CAnswerWords&) = delete;
    CAnswerWords& operator=(const CAnswerWords&) = delete;

    void Add(const SeenEvent& event) override;
    void Add(const SeenReply& reply) override;

private:
    std::string m_strAsked;
};

} // namespace Tarvane
