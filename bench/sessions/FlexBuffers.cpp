#include "bench/sessions/Peers.h"

#include "utils/ParameterFormat.h"

#include <flatbuffers/flexbuffers.h>

#include <cstdlib>
#include <optional>
#include <type_traits>

namespace Bench
{

namespace
{

// Names may stand twice in a block, so that a block is a list of names and values.
void Write(const CParameterBlock& block, flexbuffers::Builder& builder)
{
    const std::size_t nStart = builder.StartVector();
    for (const CParameter* pEntry : block.m_vParameters)
    {
        builder.String(pEntry->m_strName.c_str(), pEntry->m_strName.size());
        if (pEntry->m_nType == CParameterBlock::kType)
            Write(static_cast<const CParameterBlock&>(*pEntry), builder);
        else
            ParameterFormat::VisitValue(
                *pEntry, false,
                [&builder](const auto& parameter)
                {
                    const auto& value = ParameterFormat::ValueOf(parameter);
                    if constexpr (requires { value.c_str(); })
                        builder.String(value.c_str(), value.size());
                    else if constexpr (std::is_same_v<decltype(value), const long long&>)
                        builder.Int(value);
                    else if constexpr (std::is_same_v<decltype(value), const unsigned long long&>)
                        builder.UInt(value);
                    else if constexpr (!requires { value.nFileKey; })
                        builder.Add(value);
                    return true;
                });
    }
    builder.EndVector(nStart, false, false);
}

double Sum(flexbuffers::Reference value)
{
    if (!value.IsVector())
        return value.IsString() ? static_cast<double>(value.AsString().length()) : value.AsDouble();
    const auto list = value.AsVector();
    double dSum = 0;
    for (std::size_t i = 0; i < list.size(); ++i)
        dSum += Sum(list[i]);
    return dSum;
}

// There is no tree: a load copies the bytes and checks them, and what a program builds are the
// bytes, which a save finishes.
class CFlexBuffers : public CPeer
{
public:
    const char* Name() const override { return "FlexBuffers"; }
    void Take(const CParameterBlock& root) override
    {
        m_pTree = &root;
        flexbuffers::Builder builder(flexbuffers::BUILDER_FLAG_SHARE_KEYS_AND_STRINGS);
        Write(root, builder);
        builder.Finish();
        m_bytes = builder.GetBuffer();
    }
    std::size_t GetSize() const override { return m_bytes.size(); }
    void Load() override
    {
        m_loaded = m_bytes;
        if (!flexbuffers::VerifyBuffer(m_loaded.data(), m_loaded.size(), nullptr))
            std::abort();
    }
    void Build(const BuiltShape& shape) override
    {
        auto& builder = m_built.emplace(flexbuffers::BUILDER_FLAG_SHARE_KEYS_AND_STRINGS);
        const auto fill = [&](int nTrack)
        {
            AddValues(
                nTrack, shape,
                [&builder](const char* pName, const auto& value)
                {
                    builder.String(pName);
                    if constexpr (std::is_same_v<decltype(value), const char* const&>)
                        builder.String(value);
                    else if constexpr (std::is_same_v<decltype(value), const long long&>)
                        builder.Int(value);
                    else if constexpr (std::is_same_v<decltype(value), const unsigned long long&>)
                        builder.UInt(value);
                    else
                        builder.Add(value);
                });
        };
        m_nStart = builder.StartVector();
        if (shape.nTracks == 0)
            fill(0);
        for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
        {
            builder.String("Track");
            const std::size_t nStart = builder.StartVector();
            fill(nTrack);
            builder.EndVector(nStart, false, false);
        }
    }
    void Free() override
    {
        std::vector<std::uint8_t>().swap(m_loaded);
        m_built.reset();
    }
    void Save() override
    {
        if (m_built)
        {
            m_built->EndVector(m_nStart, false, false);
            m_built->Finish();
            return;
        }
        flexbuffers::Builder builder(flexbuffers::BUILDER_FLAG_SHARE_KEYS_AND_STRINGS);
        Write(*m_pTree, builder);
        builder.Finish();
    }
    double Walk() override { return Sum(flexbuffers::GetRoot(m_loaded)); }

private:
    const CParameterBlock* m_pTree = nullptr;
    std::vector<std::uint8_t> m_bytes;
    std::vector<std::uint8_t> m_loaded;
    std::optional<flexbuffers::Builder> m_built;
    std::size_t m_nStart = 0;
};

} // namespace

std::unique_ptr<CPeer> MakeFlexBuffers()
{
    return std::make_unique<CFlexBuffers>();
}

} // namespace Bench
