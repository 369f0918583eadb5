#pragma once

/// Owns the text that CTarvaneScript::SendCommand hands out.
class CCommandResult
{
public:
    CCommandResult() = default;
    ~CCommandResult() { delete[] m_szText; }
    CCommandResult(const CCommandResult&) = delete;
    CCommandResult& operator=(const CCommandResult&) = delete;

    /// For SendCommand to fill, once.
    char** Receive() { return &m_szText; }

    /// Null after a failed command.
    const char* Text() const { return m_szText; }

private:
    char* m_szText = nullptr;
};
