#include "TarvaneLinkShared/ScriptComposer.h"

#include <locale>

CScriptComposer::CScriptComposer(bool fAudioSuite)
{
    m_stream.imbue(std::locale::classic());
    m_stream << (fAudioSuite ? "if SelectAudioSuiteDocument() then\n"
                             : "if SelectScriptDocument() then\n");
}
