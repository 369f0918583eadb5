#include "bench/sessions/Peers.h"

#include "session.pb.h"

#include <google/protobuf/arena.h>

#include <cstdlib>
#include <optional>

namespace Bench
{

namespace
{

void Fill(const CParameterBlock& block, bench::Block& message)
{
    for (const CParameter* pEntry : block.m_vParameters)
    {
        bench::Value& value = *message.add_values();
        value.set_name(pEntry->m_strName.str());
        switch (pEntry->m_nType)
        {
        case CStringParameter::kType:
            value.set_text(static_cast<const CStringParameter*>(pEntry)->m_strValue.str());
            break;
        case CIntParameter::kType:
            value.set_int_(static_cast<const CIntParameter*>(pEntry)->m_nValue);
            break;
        case CDoubleParameter::kType:
            value.set_real(static_cast<const CDoubleParameter*>(pEntry)->m_dValue);
            break;
        case CUInt64Parameter::kType:
            value.set_uint64(static_cast<const CUInt64Parameter*>(pEntry)->m_nValue);
            break;
        case CBoolParameter::kType:
            value.set_flag(static_cast<const CBoolParameter*>(pEntry)->m_bValue);
            break;
        case CFloatParameter::kType:
            value.set_single(static_cast<const CFloatParameter*>(pEntry)->m_fValue);
            break;
        case CSInt64Parameter::kType:
            value.set_int64(static_cast<const CSInt64Parameter*>(pEntry)->m_nValue);
            break;
        default:
            Fill(*static_cast<const CParameterBlock*>(pEntry), *value.mutable_block());
        }
    }
}

void SetValue(bench::Value& value, const char* pText)
{
    value.set_text(pText);
}
void SetValue(bench::Value& value, int n)
{
    value.set_int_(n);
}
void SetValue(bench::Value& value, double d)
{
    value.set_real(d);
}
void SetValue(bench::Value& value, unsigned long long n)
{
    value.set_uint64(n);
}
void SetValue(bench::Value& value, bool b)
{
    value.set_flag(b);
}
void SetValue(bench::Value& value, float f)
{
    value.set_single(f);
}
void SetValue(bench::Value& value, long long n)
{
    value.set_int64(n);
}

void FillTrack(const BuiltShape& shape, int nTrack, bench::Block& track)
{
    AddValues(nTrack, shape,
              [&track](const char* pName, const auto& value)
              {
                  bench::Value& next = *track.add_values();
                  next.set_name(pName);
                  SetValue(next, value);
              });
}

void BuildMessage(const BuiltShape& shape, bench::Block& root)
{
    if (shape.nTracks == 0)
        FillTrack(shape, 0, root);
    for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
    {
        bench::Value& entry = *root.add_values();
        entry.set_name("Track");
        FillTrack(shape, nTrack, *entry.mutable_block());
    }
}

double Sum(const bench::Block& block)
{
    double dSum = 0;
    for (const bench::Value& value : block.values())
    {
        if (value.has_block())
        {
            dSum += Sum(value.block());
            continue;
        }
        dSum += static_cast<double>(value.name().size()) +
                static_cast<double>(value.text().size()) + value.int_() + value.real() +
                static_cast<double>(value.uint64()) + value.flag() + value.single() +
                static_cast<double>(value.int64());
    }
    return dSum;
}

class CProtobuf : public CPeer
{
public:
    const char* Name() const override { return "protobuf arena"; }
    void Take(const CParameterBlock& root) override
    {
        bench::Block message;
        Fill(root, message);
        m_bytes = message.SerializeAsString();
    }
    std::size_t GetSize() const override { return m_bytes.size(); }
    void Load() override
    {
        m_pArena = std::make_unique<google::protobuf::Arena>();
        m_pTree = google::protobuf::Arena::CreateMessage<bench::Block>(m_pArena.get());
        if (!m_pTree->ParseFromString(m_bytes))
            std::abort();
    }
    void Build(const BuiltShape& shape) override
    {
        m_pArena = std::make_unique<google::protobuf::Arena>();
        m_pTree = google::protobuf::Arena::CreateMessage<bench::Block>(m_pArena.get());
        BuildMessage(shape, *m_pTree);
    }
    void Free() override { m_pArena.reset(); }
    void Save() override { m_pTree->SerializeAsString(); }
    double Walk() override { return Sum(*m_pTree); }

private:
    std::string m_bytes;
    std::unique_ptr<google::protobuf::Arena> m_pArena;
    bench::Block* m_pTree = nullptr;
};

class CProtobufOnHeap : public CPeer
{
public:
    const char* Name() const override { return "protobuf heap"; }
    void Take(const CParameterBlock& root) override
    {
        bench::Block message;
        Fill(root, message);
        m_bytes = message.SerializeAsString();
    }
    std::size_t GetSize() const override { return m_bytes.size(); }
    void Load() override
    {
        if (!m_tree.emplace().ParseFromString(m_bytes))
            std::abort();
    }
    void Build(const BuiltShape& shape) override { BuildMessage(shape, m_tree.emplace()); }
    void Free() override { m_tree.reset(); }
    void Save() override { m_tree->SerializeAsString(); }
    double Walk() override { return Sum(*m_tree); }

private:
    std::string m_bytes;
    std::optional<bench::Block> m_tree;
};

} // namespace

std::unique_ptr<CPeer> MakeProtobuf()
{
    return std::make_unique<CProtobuf>();
}

std::unique_ptr<CPeer> MakeProtobufOnHeap()
{
    return std::make_unique<CProtobufOnHeap>();
}

} // namespace Bench
