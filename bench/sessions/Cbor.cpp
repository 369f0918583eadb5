#include "bench/sessions/Peers.h"

#include "utils/ParameterFormat.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace Bench
{

namespace
{

using Json = nlohmann::json;

// Names may stand twice in a block, so that a block is a list of names and values.
Json ToJson(const CParameterBlock& block)
{
    Json list = Json::array();
    for (const CParameter* pEntry : block.m_vParameters)
    {
        list.push_back(pEntry->m_strName.str());
        if (pEntry->m_nType == CParameterBlock::kType)
            list.push_back(ToJson(static_cast<const CParameterBlock&>(*pEntry)));
        else
            ParameterFormat::VisitValue(*pEntry, false,
                                        [&list](const auto& parameter)
                                        {
                                            const auto& value = ParameterFormat::ValueOf(parameter);
                                            if constexpr (requires { value.c_str(); })
                                                list.push_back(value.str());
                                            else if constexpr (!requires { value.nFileKey; })
                                                list.push_back(value);
                                            return true;
                                        });
    }
    return list;
}

double Sum(const Json& json)
{
    if (json.is_array())
    {
        double dSum = 0;
        for (const Json& entry : json)
            dSum += Sum(entry);
        return dSum;
    }
    if (json.is_string())
        return static_cast<double>(json.get_ref<const std::string&>().size());
    return json.is_boolean() ? json.get<bool>() : json.get<double>();
}

class CCbor : public CPeer
{
public:
    const char* Name() const override { return "nlohmann CBOR"; }
    void Take(const CParameterBlock& root) override { m_bytes = Json::to_cbor(ToJson(root)); }
    std::size_t GetSize() const override { return m_bytes.size(); }
    void Load() override { m_tree.emplace(Json::from_cbor(m_bytes)); }
    void Build(const BuiltShape& shape) override
    {
        const auto fill = [&shape](Json& list, int nTrack)
        {
            AddValues(nTrack, shape,
                      [&list](const char* pName, const auto& value)
                      {
                          list.push_back(pName);
                          list.push_back(value);
                      });
        };
        m_tree.emplace(Json::array());
        if (shape.nTracks == 0)
            fill(*m_tree, 0);
        for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
        {
            Json track = Json::array();
            fill(track, nTrack);
            m_tree->push_back("Track");
            m_tree->push_back(std::move(track));
        }
    }
    void Free() override { m_tree.reset(); }
    void Save() override { Json::to_cbor(*m_tree); }
    double Walk() override { return Sum(*m_tree); }

private:
    std::vector<std::uint8_t> m_bytes;
    std::optional<Json> m_tree;
};

} // namespace

std::unique_ptr<CPeer> MakeCbor()
{
    return std::make_unique<CCbor>();
}

} // namespace Bench
