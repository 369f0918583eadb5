#pragma once

#include <sstream>
#include <string>

/// The text of a script under way. Numbers come out without grouping and with a decimal point in
/// every locale.
class CScriptComposer
{
public:
    /// Starts with the line that selects the document, which the last line, "end\n", closes.
    explicit CScriptComposer(bool fAudioSuite);

    template <typename Piece> CScriptComposer& operator<<(const Piece& piece)
    {
        m_stream << piece;
        return *this;
    }

    std::string Text() const { return m_stream.str(); }

private:
    std::ostringstream m_stream;
};
