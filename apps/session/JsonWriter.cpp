#include "apps/session/EntryText.h"
#include "apps/session/Json.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <ostream>

namespace Tarvane::Session
{

namespace
{

std::string TextJson(std::string_view text)
{
    if (IsUtf8(text))
        return nlohmann::json(text).dump();
    std::string strHex;
    for (const char c : text)
    {
        constexpr char digits[] = "0123456789abcdef";
        const auto n = static_cast<unsigned char>(c);
        strHex += {digits[n >> 4], digits[n & 15]};
    }
    return R"({"hex": ")" + strHex + "\"}";
}

template <typename Float> std::string FloatJson(Float value)
{
    const std::string text = NumberText(value);
    if (!std::isfinite(value))
        return "\"" + text + "\"";
    // A whole number stays a number with a point: readers may drop the sign of an integer zero.
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string ValueJson(const CParameter& parameter)
{
    switch (parameter.m_nType)
    {
    case CStringParameter::kType:
        return TextJson(static_cast<const CStringParameter&>(parameter).m_strValue);
    case CDoubleParameter::kType:
        return FloatJson(static_cast<const CDoubleParameter&>(parameter).m_dValue);
    case CFloatParameter::kType:
        return FloatJson(static_cast<const CFloatParameter&>(parameter).m_fValue);
    case CUInt64Parameter::kType:
    case CSInt64Parameter::kType:
        return "\"" + ValueText(parameter) + "\"";
    case CFileIdTypeParameter::kType:
    {
        const auto& id = static_cast<const CFileIdTypeParameter&>(parameter).m_idValue;
        return R"({"key": ")" + std::to_string(id.nFileKey) + R"(", "sub": ")" +
               std::to_string(id.nFileSub) + "\"}";
    }
    default:
        return ValueText(parameter);
    }
}

class CWriter
{
public:
    explicit CWriter(std::ostream& out) : m_out(out) {}

    void Write(const CParameterBlock& root)
    {
        m_out << "{\"format\": \"tarvane-session\", \"name\": " << TextJson(root.m_strName);
        Open(root);
        while (!m_open.empty())
        {
            Rest& rest = m_open.back();
            if (rest.it == rest.end)
                Close();
            else
                WriteEntry(*rest.it++);
        }
        m_out << '\n';
    }

private:
    struct Rest
    {
        CParameterList::const_iterator it;
        CParameterList::const_iterator end;
    };

    void Open(const CParameterBlock& block)
    {
        m_out << ", \"parameters\": [";
        m_open.push_back({block.m_vParameters.begin(), block.m_vParameters.end()});
        m_fFirst = true;
    }

    void Close()
    {
        m_open.pop_back();
        m_out << "]}";
        m_fFirst = false;
    }

    void WriteEntry(const CParameter* pEntry)
    {
        m_out << (m_fFirst ? "\n" : ",\n");
        m_fFirst = false;
        if (!pEntry)
        {
            m_out << "null";
            return;
        }
        m_out << "{\"name\": " << TextJson(pEntry->m_strName) << ", \"type\": \""
              << TypeName(pEntry->m_nType) << '"';
        if (pEntry->m_nType == CParameterBlock::kType)
            Open(static_cast<const CParameterBlock&>(*pEntry));
        else
            m_out << ", \"value\": " << ValueJson(*pEntry) << '}';
    }

    std::ostream& m_out;
    std::vector<Rest> m_open;
    bool m_fFirst = true;
};

} // namespace

void WriteJson(const CParameterBlock& root, std::ostream& out)
{
    CWriter(out).Write(root);
}

} // namespace Tarvane::Session
