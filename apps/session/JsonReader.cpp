#include "apps/session/EntryText.h"
#include "apps/session/Json.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/text/DecimalNumber.h"

#include <nlohmann/json.hpp>

#include <bit>
#include <charconv>
#include <limits>
#include <memory>
#include <optional>

namespace Tarvane::Session
{

namespace
{

using Json = nlohmann::json;

// A number as it stands in the text, a text, or true or false.
struct Scalar
{
    enum Kind
    {
        kNone,
        kNumber,
        kText,
        kBool
    };
    Kind kind = kNone;
    std::string text;
    bool fTrue = false;
};

// What is known of an entry before its object ends.
struct Entry
{
    std::optional<std::string> name;
    std::string strType;
    Scalar value;
    std::optional<std::string> key, sub;
    std::unique_ptr<CParameterBlock> pBlock; // its entries, from "parameters" on
};

[[noreturn]] void Refuse(const std::string& strWhat)
{
    throw CUsageError(strWhat);
}

std::string FromHex(const std::string& strHex)
{
    std::string bytes;
    for (std::size_t i = 0; i < strHex.size(); i += 2)
    {
        unsigned n = 0;
        const char* pFirst = strHex.data() + i;
        const char* pLast = pFirst + std::min<std::size_t>(2, strHex.size() - i);
        const auto result = std::from_chars(pFirst, pLast, n, 16);
        if (result.ptr != pFirst + 2)
            Refuse("\"hex\" takes two digits a byte, not \"" + strHex + "\".");
        bytes += static_cast<char>(n);
    }
    return bytes;
}

template <typename Number> Number WholeNumber(const std::string& text, const char* pType)
{
    Number n = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), n);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || text.empty())
        Refuse("\"" + text + "\" is no " + pType + ".");
    return n;
}

template <typename Float, typename Bits> Float Real(const Scalar& value, const char* pType)
{
    const std::string& text = value.text;
    const char* pEnd = text.data() + text.size();
    if (value.kind == Scalar::kText)
    {
        if (text == "nan")
            return std::numeric_limits<Float>::quiet_NaN();
        if (text == "inf" || text == "-inf")
            return text == "inf" ? std::numeric_limits<Float>::infinity()
                                 : -std::numeric_limits<Float>::infinity();
        Bits nBits = 0;
        constexpr std::size_t nPrefix = 4;
        if (text.rfind("nan:", 0) == 0 && text.size() > nPrefix &&
            std::from_chars(text.data() + nPrefix, pEnd, nBits, 16).ptr == pEnd &&
            std::bit_cast<Float>(nBits) != std::bit_cast<Float>(nBits))
            return std::bit_cast<Float>(nBits);
        Refuse("\"" + text + "\" is no " + pType + ".");
    }
    const std::optional<Float> number = DecimalFrom<Float>(text);
    if (value.kind != Scalar::kNumber || !number)
        Refuse("\"" + text + "\" is no " + pType + ".");
    return *number;
}

// Reads by events, so that depth costs no call stack.
class CReader : public nlohmann::json_sax<Json>
{
public:
    explicit CReader(CParameterBlock& root) : m_root(root) {}

    // The names of the entries that are open, for a message.
    std::string Where() const
    {
        std::string strWhere = "/";
        for (std::size_t i = 1; i < m_entries.size(); ++i)
            strWhere += (i > 1 ? "/" : "") +
                        PrintableText(m_entries[i].name.value_or("(no name yet)"), "/");
        return strWhere;
    }

    bool null() override
    {
        if (m_context.empty() || m_context.back() != Context::kEntries)
            Refuse("null stands where a value is due.");
        Refuse("an entry is null: it had a type that nobody knows, and cannot be written.");
    }
    bool boolean(bool fValue) override { return Take({Scalar::kBool, {}, fValue}); }
    bool number_integer(number_integer_t nValue) override
    {
        return Take({Scalar::kNumber, std::to_string(nValue), false});
    }
    bool number_unsigned(number_unsigned_t nValue) override
    {
        return Take({Scalar::kNumber, std::to_string(nValue), false});
    }
    bool number_float(number_float_t, const string_t& text) override
    {
        return Take({Scalar::kNumber, text, false});
    }
    bool string(string_t& text) override { return Take({Scalar::kText, text, false}); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override
    {
        if (m_context.empty() || m_context.back() == Context::kEntries)
        {
            m_context.push_back(Context::kEntry);
            m_entries.emplace_back();
        }
        else if (m_context.back() == Context::kEntry && (m_strKey == "name" || m_strKey == "value"))
            m_context.push_back(Context::kParts);
        else
            Refuse("an object stands where \"" + m_strKey + "\" is due.");
        return true;
    }

    bool key(string_t& strKey) override
    {
        static const char* const inEntry[] = {"name", "type", "value", "parameters", "format"};
        static const char* const inParts[] = {"hex", "key", "sub"};
        const auto is = [&strKey](const char* p) { return strKey == p; };
        const bool fKnown = m_context.back() == Context::kEntry
                                ? std::any_of(std::begin(inEntry), std::end(inEntry), is)
                                : std::any_of(std::begin(inParts), std::end(inParts), is);
        if (!fKnown)
            Refuse("\"" + PrintableText(strKey, "\"") + "\" is no key of the form.");
        (m_context.back() == Context::kEntry ? m_strKey : m_strPart) = strKey;
        return true;
    }

    bool end_object() override
    {
        const Context ended = m_context.back();
        m_context.pop_back();
        if (ended == Context::kParts)
            return true;
        if (m_entries.size() == 1)
            FinishRoot(m_entries.back());
        else
            Append(m_entries.back(), *m_entries[m_entries.size() - 2].pBlock);
        m_entries.pop_back();
        return true;
    }

    bool start_array(std::size_t) override
    {
        if (m_context.empty() || m_context.back() != Context::kEntry || m_strKey != "parameters")
            Refuse("a list stands where none is due.");
        if (m_entries.back().pBlock)
            Refuse("\"parameters\" stands twice in one entry.");
        m_context.push_back(Context::kEntries);
        m_entries.back().pBlock = std::make_unique<CParameterBlock>();
        return true;
    }
    bool end_array() override
    {
        m_context.pop_back();
        return true;
    }

    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override
    {
        Refuse(std::string("this is no JSON: ") + error.what());
    }

private:
    enum class Context
    {
        kEntries, // in "parameters"
        kEntry,   // in the root or an entry
        kParts    // in the object that stands for a name or value
    };

    bool Take(Scalar value)
    {
        if (m_context.empty() || m_context.back() == Context::kEntries)
            Refuse("a plain value stands where an entry is due.");
        Entry& entry = m_entries.back();
        if (m_context.back() == Context::kParts)
            TakePart(entry, value);
        else if (m_strKey == "value")
            entry.value = std::move(value);
        else if (value.kind != Scalar::kText)
            Refuse("\"" + m_strKey + "\" takes a text.");
        else if (m_strKey == "name")
            entry.name = std::move(value.text);
        else if (m_strKey == "type")
            entry.strType = std::move(value.text);
        else if (m_strKey == "format")
            TakeFormat(value.text);
        else
            Refuse("\"parameters\" takes a list.");
        return true;
    }

    void TakeFormat(const std::string& text)
    {
        if (text != "tarvane-session" || m_entries.size() > 1)
            Refuse("\"format\" is \"tarvane-session\", once, at the top.");
        m_fFormat = true;
    }

    void TakePart(Entry& entry, const Scalar& part)
    {
        if (part.kind != Scalar::kText)
            Refuse("\"" + m_strPart + "\" takes a text.");
        if (m_strPart == "hex" && m_strKey == "name")
            entry.name = FromHex(part.text);
        else if (m_strPart == "hex")
            entry.value = {Scalar::kText, FromHex(part.text), false};
        else if (m_strKey != "value")
            Refuse("a name has no \"" + m_strPart + "\".");
        else
            (m_strPart == "key" ? entry.key : entry.sub) = part.text;
    }

    void FinishRoot(Entry& entry)
    {
        if (!m_fFormat)
            Refuse("this is no session: \"format\": \"tarvane-session\" is missing at the top.");
        if (!entry.pBlock)
            Refuse("\"parameters\" is missing at the top.");
        m_root.m_strName = NameOf(entry);
        m_root.m_vParameters.swap(entry.pBlock->m_vParameters);
    }

    static void Append(Entry& entry, CParameterBlock& parent)
    {
        std::unique_ptr<CParameter> pNew = Make(entry);
        pNew->m_strName = NameOf(entry);
        parent.m_vParameters.push_back(pNew.get());
        pNew.release();
    }

    static CByteString NameOf(const Entry& entry)
    {
        if (!entry.name)
            Refuse("an entry has no \"name\"; an empty one is written \"\".");
        if (entry.name->find('\0') != std::string::npos)
            Refuse("the name \"" + PrintableText(*entry.name, "\"") +
                   "\" holds a zero byte, which ends a name in a session.");
        return CByteString(*entry.name);
    }

    static std::unique_ptr<CParameter> Make(Entry& entry)
    {
        const std::string& strType = entry.strType;
        if (strType == "block")
        {
            if (!entry.pBlock)
                Refuse("a block has no \"parameters\".");
            return std::move(entry.pBlock);
        }
        if (entry.pBlock)
            Refuse("\"parameters\" belongs to a block, not to type \"" + strType + "\".");
        if (strType == "fileid")
            return std::make_unique<CFileIdTypeParameter>(nullptr, MakeFileId(entry));
        return MakeValue(strType, entry.value);
    }

    static TGL::FileIdType MakeFileId(const Entry& entry)
    {
        if (!entry.key || !entry.sub)
            Refuse("a file id takes \"key\" and \"sub\".");
        return {WholeNumber<std::int64_t>(*entry.key, "file id"),
                WholeNumber<long>(*entry.sub, "file id")};
    }

    static std::unique_ptr<CParameter> MakeValue(const std::string& strType, const Scalar& value)
    {
        if (value.kind == Scalar::kNone)
            Refuse("an entry of type \"" + strType + "\" has no \"value\".");
        if (strType == "string" && value.kind == Scalar::kText)
        {
            auto pNew = std::make_unique<CStringParameter>();
            pNew->m_strValue = value.text;
            return pNew;
        }
        if (strType == "bool" && value.kind == Scalar::kBool)
            return std::make_unique<CBoolParameter>(nullptr, value.fTrue);
        if (strType == "int" && value.kind == Scalar::kNumber)
            return std::make_unique<CIntParameter>(nullptr, WholeNumber<int>(value.text, "int"));
        if (strType == "int64" && value.kind != Scalar::kBool)
            return std::make_unique<CSInt64Parameter>(nullptr,
                                                      WholeNumber<long long>(value.text, "int64"));
        if (strType == "uint64" && value.kind != Scalar::kBool)
            return std::make_unique<CUInt64Parameter>(
                nullptr, WholeNumber<unsigned long long>(value.text, "uint64"));
        if (strType == "double")
            return std::make_unique<CDoubleParameter>(nullptr,
                                                      Real<double, std::uint64_t>(value, "double"));
        if (strType == "float")
            return std::make_unique<CFloatParameter>(nullptr,
                                                     Real<float, std::uint32_t>(value, "float"));
        Refuse("a value does not fit its type \"" + PrintableText(strType, "\"") +
               "\", or there is no such type.");
    }

    CParameterBlock& m_root;
    std::vector<Context> m_context;
    std::vector<Entry> m_entries; // open ones, the root first
    std::string m_strKey;
    std::string m_strPart;
    bool m_fFormat = false;
};

} // namespace

void ReadJson(std::string_view text, CParameterBlock& root)
{
    CReader reader(root);
    try
    {
        Json::sax_parse(text, &reader);
    }
    catch (const CUsageError& error)
    {
        throw CUsageError(std::string(error.what()) + " Found in " + reader.Where());
    }
}

} // namespace Tarvane::Session
