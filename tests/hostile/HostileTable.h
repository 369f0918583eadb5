// What was tried, what was to come of it and what came: a line of Markdown each, in the file that
// TARVANE_HOSTILE_TABLE names. Nothing is written without it.
#pragma once

#include <cstdlib>
#include <fstream>
#include <string>

namespace TarvaneTest
{

/// The beginning of a text, on one line, without what Markdown would take for its own.
inline std::string Shown(const std::string& strText)
{
    std::string strShown;
    for (const char c : strText.substr(0, 60))
        strShown += c == '|' || c == '`' || static_cast<unsigned char>(c) < 0x20 ? '.' : c;
    return strShown + (strText.size() > 60 ? "..." : "");
}

class CHostileTable
{
public:
    CHostileTable()
    {
        if (const char* szFile = std::getenv("TARVANE_HOSTILE_TABLE"))
            m_file.open(szFile, std::ios::app);
    }

    void Note(const std::string& strInput, const std::string& strExpected,
              const std::string& strSeen)
    {
        if (m_file.is_open())
            m_file << "| `" << Shown(strInput) << "` | " << strExpected << " | " << Shown(strSeen)
                   << " |\n";
    }

private:
    std::ofstream m_file;
};

} // namespace TarvaneTest
