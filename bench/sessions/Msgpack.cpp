#include "bench/sessions/Peers.h"

#include "utils/ParameterFormat.h"

#include <msgpack.hpp>

namespace Bench
{

namespace
{

using Packer = msgpack::packer<msgpack::sbuffer>;

void Pack(Packer& packer, std::string_view text)
{
    packer.pack_str(static_cast<std::uint32_t>(text.size()));
    packer.pack_str_body(text.data(), static_cast<std::uint32_t>(text.size()));
}

void Pack(Packer& packer, const CParameterBlock& block)
{
    packer.pack_map(static_cast<std::uint32_t>(block.m_vParameters.size()));
    for (const CParameter* pEntry : block.m_vParameters)
    {
        Pack(packer, std::string_view(pEntry->m_strName));
        if (pEntry->m_nType == CParameterBlock::kType)
            Pack(packer, static_cast<const CParameterBlock&>(*pEntry));
        else
            ParameterFormat::VisitValue(*pEntry, false,
                                        [&packer](const auto& parameter)
                                        {
                                            const auto& value = ParameterFormat::ValueOf(parameter);
                                            if constexpr (requires { value.c_str(); })
                                                Pack(packer, std::string_view(value));
                                            else if constexpr (!requires { value.nFileKey; })
                                                packer.pack(value);
                                            return true;
                                        });
    }
}

double Sum(const msgpack::object& object)
{
    switch (object.type)
    {
    case msgpack::type::MAP:
    {
        double dSum = 0;
        for (const auto& entry : object.via.map)
            dSum += (entry.val.type == msgpack::type::MAP ? 0.0 : entry.key.via.str.size) +
                    Sum(entry.val);
        return dSum;
    }
    case msgpack::type::STR:
        return object.via.str.size;
    case msgpack::type::FLOAT32:
    case msgpack::type::FLOAT64:
        return object.via.f64;
    case msgpack::type::POSITIVE_INTEGER:
        return static_cast<double>(object.via.u64);
    case msgpack::type::NEGATIVE_INTEGER:
        return static_cast<double>(object.via.i64);
    case msgpack::type::BOOLEAN:
        return object.via.boolean;
    default:
        return 0;
    }
}

class CMsgpack : public CPeer
{
public:
    const char* Name() const override { return "msgpack-cxx"; }
    void Take(const CParameterBlock& root) override
    {
        Packer packer(m_bytes);
        Pack(packer, root);
    }
    std::size_t GetSize() const override { return m_bytes.size(); }
    void Load() override { m_handle = msgpack::unpack(m_bytes.data(), m_bytes.size()); }
    void Build(const BuiltShape& shape) override
    {
        auto zone = std::make_unique<msgpack::zone>();
        const auto makeMap = [&zone](int nEntries)
        {
            msgpack::object map;
            map.type = msgpack::type::MAP;
            map.via.map.size = static_cast<std::uint32_t>(nEntries);
            map.via.map.ptr = static_cast<msgpack::object_kv*>(zone->allocate_align(
                sizeof(msgpack::object_kv) * static_cast<std::size_t>(nEntries),
                MSGPACK_ZONE_ALIGNOF(msgpack::object_kv)));
            return map;
        };
        const auto makeTrack = [&](int nTrack)
        {
            const msgpack::object track = makeMap(shape.nValuesPerTrack);
            msgpack::object_kv* pNext = track.via.map.ptr;
            AddValues(nTrack, shape,
                      [&](const char* pName, const auto& value)
                      {
                          pNext->key = msgpack::object(pName, *zone);
                          pNext->val = msgpack::object(value, *zone);
                          ++pNext;
                      });
            return track;
        };
        const msgpack::object root = shape.nTracks == 0 ? makeTrack(0) : makeMap(shape.nTracks);
        for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
        {
            root.via.map.ptr[nTrack].key = msgpack::object("Track", *zone);
            root.via.map.ptr[nTrack].val = makeTrack(nTrack);
        }
        m_handle = msgpack::object_handle(root, std::move(zone));
    }
    void Free() override { m_handle = msgpack::object_handle(); }
    void Save() override
    {
        msgpack::sbuffer out;
        msgpack::pack(out, m_handle.get());
    }
    double Walk() override { return Sum(m_handle.get()); }

private:
    msgpack::sbuffer m_bytes;
    msgpack::object_handle m_handle;
};

} // namespace

std::unique_ptr<CPeer> MakeMsgpack()
{
    return std::make_unique<CMsgpack>();
}

} // namespace Bench
