#include "apps/support/recording/AnswerWords.h"

#include "apps/support/process/ChildProcess.h"
#include "apps/support/recording/ScriptCalls.h"
#include "apps/support/text/PlainText.h"
#include "utils/UnicodeText.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace Tarvane
{
namespace
{

constexpr std::size_t kMostShown = 300; // of an answer
constexpr unsigned kPatience = 5;       // seconds

// Ready before anything goes wrong, since little may be done then.
char szWords[1024];
std::atomic<std::size_t> nWords{0};
OSType nSignature = 0;

std::string TextOf(const std::vector<SeenParameter>& parameters, AEKeyword nKeyword)
{
    for (const SeenParameter& parameter : parameters)
    {
        if (parameter.nKeyword != nKeyword || parameter.nType != typeUnicodeText)
            continue;
        // Three bytes of UTF-8 are the most that a unit becomes.
        std::u16string units(std::min(parameter.bytes.size() / sizeof(char16_t), kMostShown + 1),
                             u'\0');
        if (!units.empty())
            std::memcpy(units.data(), parameter.bytes.data(), units.size() * sizeof(char16_t));
        std::string strText = Utf8FromUtf16(units);
        if (strText.size() > kMostShown)
            strText = strText.substr(0, kMostShown) + " ...";
        return strText;
    }
    return {};
}

void Write(std::string_view text)
{
    (void)!::write(STDERR_FILENO, text.data(), text.size());
}

void EndNow(int)
{
    std::signal(SIGABRT, SIG_DFL);
    std::abort();
}

void TellAnswer(int)
{
    // What has gone wrong may be the heap: the first words need none, and the rest no more than its
    // time.
    std::signal(SIGABRT, SIG_DFL);
    std::signal(SIGALRM, EndNow);
    ::alarm(kPatience);
    Write({szWords, nWords});
    const std::int64_t nProcess = ReceiverOf(nSignature);
    if (nProcess > 0)
        Write("It came from process " + std::to_string(nProcess) + ", " +
              PlainText(ProgramOf(nProcess)) + ".\n");
}

} // namespace

CAnswerWords::CAnswerWords()
{
    nWords = 0;
    std::signal(SIGABRT, TellAnswer);
}

CAnswerWords::~CAnswerWords()
{
    std::signal(SIGABRT, SIG_DFL);
}

void CAnswerWords::Add(const SeenEvent& event)
{
    nSignature = event.nTarget;
    m_strAsked = WhatItAsks(TextOf(event.parameters, keyDirectObject));
}

void CAnswerWords::Add(const SeenReply& reply)
{
    const std::string strWords = "The server's last answer, to " + PlainText(m_strAsked) + ":\n" +
                                 PlainText(TextOf(reply.parameters, 'Rslt')) + "\n";
    nWords = strWords.copy(szWords, sizeof szWords);
}

} // namespace Tarvane
