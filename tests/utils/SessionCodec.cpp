#include "tests/utils/SessionCodec.h"

#include "tests/utils/Bytes.h"

namespace SessionCodec
{
namespace
{
class Reader
{
public:
    explicit Reader(const std::string& bytes) : m_bytes(bytes) {}

    std::string Take(std::size_t n)
    {
        if (m_bytes.size() - m_nAt < n)
            throw Malformed("cut short at " + std::to_string(m_nAt));
        m_nAt += n;
        return m_bytes.substr(m_nAt - n, n);
    }
    std::uint32_t Number(int nBytes)
    {
        const std::string bytes = Take(static_cast<std::size_t>(nBytes));
        std::uint32_t n = 0;
        for (int i = nBytes - 1; i >= 0; --i)
            n = n << 8 | static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
        return n;
    }
    std::uint32_t Token()
    {
        const std::uint32_t nFirst = Number(1);
        return nFirst < 255 ? nFirst : Number(3);
    }
    bool AtEnd() const { return m_nAt == m_bytes.size(); }

private:
    const std::string& m_bytes;
    std::size_t m_nAt = 0;
};

Node ReadRecord(Reader& reader, unsigned nType)
{
    static const unsigned sizes[] = {0, 0, 4, 8, 8, 16, 0, 1, 4, 8};
    Node node;
    node.nType = nType;
    node.nToken = reader.Token();
    if (nType == 1)
        node.payload = reader.Take(reader.Number(4));
    else if (nType == 6)
        for (std::uint32_t nLeft = reader.Number(4); nLeft > 0; --nLeft)
            node.children.push_back(ReadRecord(reader, reader.Number(4)));
    else if (nType >= 1 && nType <= 9)
        node.payload = reader.Take(sizes[nType]);
    else
        throw Malformed("unknown tag");
    return node;
}

void WriteRecord(Bytes& bytes, const Node& node)
{
    if (node.nToken < 255)
        bytes.U8(node.nToken);
    else
        bytes.U8(255).U8(node.nToken & 255).U8(node.nToken >> 8 & 255).U8(node.nToken >> 16 & 255);
    if (node.nType == 1)
        bytes.Counted(node.payload);
    else if (node.nType != 6)
        bytes.Text(node.payload);
    else
    {
        bytes.U32(node.children.size());
        for (const Node& child : node.children)
            WriteRecord(bytes.U32(child.nType), child);
    }
}
} // namespace

const std::string& Session::NameOf(const Node& node) const
{
    static const std::string strEmpty;
    return node.nToken == 0 ? strEmpty : names.at(node.nToken - 1);
}

Session Decode(const std::string& bytes)
{
    Reader reader(bytes);
    Session session;
    if (reader.Take(26) != std::string("[TNE Binary Session File]\0", 26))
        throw Malformed("magic");
    session.nVersion = reader.Number(4);
    const std::uint32_t nTableSize = reader.Number(4);
    const std::uint32_t nNames = reader.Number(4);
    const std::string table = reader.Take(nTableSize);
    for (std::size_t nAt = 0; nAt < table.size(); nAt = table.find('\0', nAt) + 1)
        session.names.push_back(table.substr(nAt, table.find('\0', nAt) - nAt));
    if (session.names.size() != nNames)
        throw Malformed("count of names");
    session.root = ReadRecord(reader, 6);
    if (!reader.AtEnd())
        throw Malformed("bytes left over");
    return session;
}

std::string Encode(const Session& session)
{
    Bytes table;
    for (const std::string& strName : session.names)
        table.Text(strName).U8(0);
    Bytes bytes;
    bytes.Magic().U32(session.nVersion).U32(table.Get().size()).U32(session.names.size());
    bytes.Text(table.Get());
    WriteRecord(bytes, session.root);
    return bytes;
}
} // namespace SessionCodec
