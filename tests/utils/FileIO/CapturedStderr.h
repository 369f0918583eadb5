#pragma once

#include <cstdio>
#include <string>
#include <unistd.h>

/// Takes what the process writes to the standard error stream, the system log's lines included.
class CapturedStderr
{
public:
    CapturedStderr() : m_pFile(std::tmpfile()), m_nOriginal(dup(STDERR_FILENO))
    {
        std::fflush(stderr);
        dup2(fileno(m_pFile), STDERR_FILENO);
    }
    ~CapturedStderr()
    {
        std::fflush(stderr);
        dup2(m_nOriginal, STDERR_FILENO);
        close(m_nOriginal);
        std::fclose(m_pFile);
    }
    CapturedStderr(const CapturedStderr&) = delete;
    CapturedStderr& operator=(const CapturedStderr&) = delete;

    /// All of it so far.
    std::string Text() const
    {
        std::fflush(stderr);
        std::string strText;
        char buffer[4096];
        off_t nOffset = 0;
        while (const ssize_t nRead = pread(fileno(m_pFile), buffer, sizeof buffer, nOffset))
        {
            if (nRead < 0)
                break;
            strText.append(buffer, nRead);
            nOffset += nRead;
        }
        return strText;
    }

    /// The words of the one line in the log, behind its time and process. All of the text if it is
    /// not one such line.
    std::string LogLine() const
    {
        const std::string strText = Text();
        const std::size_t nStamp = strText.find("] ");
        if (nStamp == std::string::npos || strText.find('\n') != strText.size() - 1)
            return strText;
        return strText.substr(nStamp + 2, strText.size() - nStamp - 3);
    }

private:
    std::FILE* m_pFile;
    int m_nOriginal;
};
