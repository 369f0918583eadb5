// bench-sessions: loading, saving, freeing and walking sessions, beside other formats and beside
// the least that such work can cost. With --benchmark_repetitions=9 the figures are steady.
#include "bench/sessions/Measure.h"
#include "bench/sessions/Peers.h"
#include "bench/sessions/PlainTree.h"
#include "bench/sessions/Trees.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <optional>

namespace Bench
{

namespace
{

volatile double dSink;

double ValueOf(const CParameter& parameter)
{
    switch (parameter.m_nType)
    {
    case CStringParameter::kType:
        return static_cast<double>(
            static_cast<const CStringParameter&>(parameter).m_strValue.size());
    case CIntParameter::kType:
        return static_cast<const CIntParameter&>(parameter).m_nValue;
    case CDoubleParameter::kType:
        return static_cast<const CDoubleParameter&>(parameter).m_dValue;
    case CUInt64Parameter::kType:
        return static_cast<double>(static_cast<const CUInt64Parameter&>(parameter).m_nValue);
    case CBoolParameter::kType:
        return static_cast<const CBoolParameter&>(parameter).m_bValue;
    case CFloatParameter::kType:
        return static_cast<const CFloatParameter&>(parameter).m_fValue;
    case CSInt64Parameter::kType:
        return static_cast<double>(static_cast<const CSInt64Parameter&>(parameter).m_nValue);
    default:
        return 0;
    }
}

/// As Walk of PlainTree.h does.
double WalkSession(const CParameterBlock& root)
{
    double dSum = 0;
    std::vector<const CParameterBlock*> open{&root};
    while (!open.empty())
    {
        const CParameterBlock* pBlock = open.back();
        open.pop_back();
        for (const CParameter* pEntry : pBlock->m_vParameters)
        {
            if (pEntry->m_nType == CParameterBlock::kType)
                open.push_back(static_cast<const CParameterBlock*>(pEntry));
            else
                dSum += ValueOf(*pEntry) + static_cast<double>(pEntry->m_strName.size());
        }
    }
    return dSum;
}

/// The tree under test, as a peer among the others.
class CSession : public CPeer
{
public:
    const char* Name() const override { return "tarvane"; }
    void Take(const CParameterBlock& root) override
    {
        CParameterBlock copy;
        copy.CopyParameters(&root);
        m_bytes = SaveSession(copy);
    }
    std::size_t GetSize() const override { return m_bytes.size(); }
    void Load() override { LoadSession(m_root.emplace(), m_bytes); }
    void Free() override { m_root.reset(); }
    void Save() override
    {
        CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
        m_root->SaveBinarySessionToMemory(pData);
        CFRelease(pData);
    }
    double Walk() override { return WalkSession(*m_root); }

    CParameterBlock& Root() { return *m_root; }

private:
    std::string m_bytes;
    std::optional<CParameterBlock> m_root;
};

void RegisterPeer(CPeer& peer)
{
    const std::string strName = peer.Name();
    Register("load/" + strName,
             {[] { malloc_trim(0); }, [&peer] { peer.Load(); }, [&peer] { peer.Free(); }});
    Register("load, reused memory/" + strName,
             {[&peer]
              {
                  peer.Load();
                  peer.Free();
              },
              [&peer] { peer.Load(); }, [&peer] { peer.Free(); }});
    Register("free/" + strName, {[&peer] { peer.Load(); }, [&peer] { peer.Free(); }, {}});
    Register("save/" + strName, {[&peer]
                                 {
                                     peer.Load();
                                     malloc_trim(0);
                                 },
                                 [&peer] { peer.Save(); }, [&peer] { peer.Free(); }});
    Register("walk/" + strName, {[&peer]
                                 {
                                     peer.Load();
                                     dSink = peer.Walk();
                                 },
                                 [&peer] { dSink = peer.Walk(); }, [&peer] { peer.Free(); }});
}

void RegisterFloors(const CParameterBlock& root)
{
    static PlainNode* pPlain;
    const auto build = [&root] { pPlain = BuildPlain(root); };
    Register("free/plain nodes", {build, [] { Free(pPlain); }, {}});
    Register("walk/plain nodes", {[build]
                                  {
                                      build();
                                      dSink = Walk(*pPlain);
                                  },
                                  [] { dSink = Walk(*pPlain); }, [] { Free(pPlain); }});
    Expect("load/tarvane", "load/msgpack-cxx", 1.0);
    Expect("load, reused memory/tarvane", "load/msgpack-cxx", 0.6);
    Expect("load, reused memory/tarvane", "load, reused memory/msgpack-cxx", 0.6);
    Expect("save/tarvane", "save/msgpack-cxx", 0.9);
    Expect("free/tarvane", "free/plain nodes", 0.25);
    Expect("walk/tarvane", "walk/plain nodes", 1.3);
}

void RegisterDeep(CSession& deep, const CParameterBlock& source)
{
    static PlainNode* pPlain;
    static std::optional<CParameterBlock> copy;
    static unsigned char* pFlat;
    const auto load = [&deep] { deep.Load(); };
    const auto free = [&deep] { deep.Free(); };
    const auto build = [&source] { pPlain = BuildPlain(source); };
    Register("deep allocate/plain nodes", {{}, build, [] { Free(pPlain); }});
    Register("deep free/plain nodes", {build, [] { Free(pPlain); }, {}});
    Register("deep walk/plain nodes", {build, [] { dSink = Walk(*pPlain); }, [] { Free(pPlain); }});
    Register("deep load/tarvane", {{}, load, free});
    Register("deep free/tarvane", {load, free, {}});
    Register("deep copy/tarvane", {load, [&deep] { copy.emplace().CopyParameters(&deep.Root()); },
                                   [free]
                                   {
                                       copy.reset();
                                       free();
                                   }});
    Register("deep size/tarvane",
             {load, [&deep] { dSink = static_cast<double>(deep.Root().GetSize()); }, free});
    Register("deep flat block/tarvane", {load,
                                         [&deep]
                                         {
                                             unsigned long nSize = 0;
                                             pFlat = deep.Root().CreateBlock(&nSize);
                                         },
                                         [free]
                                         {
                                             delete[] pFlat;
                                             free();
                                         }});
    Register("deep walk/tarvane", {load, [&deep] { dSink = deep.Walk(); }, free});
    Register("deep save/tarvane", {load, [&deep] { deep.Save(); }, free});
    Expect("deep load/tarvane", "deep allocate/plain nodes", 1.5);
    Expect("deep copy/tarvane", "deep allocate/plain nodes", 1.5);
    Expect("deep free/tarvane", "deep free/plain nodes", 1.5);
    Expect("deep size/tarvane", "deep walk/plain nodes", 1.5);
    Expect("deep walk/tarvane", "deep walk/plain nodes", 1.5);
    Expect("deep flat block/tarvane", "deep walk/plain nodes", 1.5);
    Expect("deep save/tarvane", "deep walk/plain nodes", 1.5);
}

void PrintSizes(const std::vector<CPeer*>& peers)
{
    std::printf("%-16s %12s %14s %14s\n", "", "bytes", "peak of load", "peak of save");
    for (CPeer* pPeer : peers)
    {
        const std::size_t nLoad = PeakOf([pPeer] { pPeer->Load(); });
        pPeer->Load();
        const std::size_t nSave = PeakOf([pPeer] { pPeer->Save(); });
        pPeer->Free();
        std::printf("%-16s %12zu %14zu %14zu\n", pPeer->Name(), pPeer->GetSize(), nLoad, nSave);
        malloc_trim(0);
    }
    std::printf("\n");
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    using namespace Bench;
    // Memory goes back only where a measurement asks for it.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);

    CParameterBlock source, small, deepSource;
    BuildSession(source);
    BuildSession(small, 1);
    BuildDeep(deepSource);
    std::printf("%zu values; %zu in the tree of the binary plist; %d levels in the deep tree\n\n",
                CountValues(source), CountValues(small), kDeepLevels);

    CSession session, deep;
    const auto msgpack = MakeMsgpack();
    const auto protobuf = MakeProtobuf();
    const auto cbor = MakeCbor();
    const auto flexBuffers = MakeFlexBuffers();
    const auto propertyList = MakePropertyList();
    const std::vector<CPeer*> peers{&session,   msgpack.get(),     protobuf.get(),
                                    cbor.get(), flexBuffers.get(), propertyList.get()};
    for (CPeer* pPeer : peers)
        pPeer->Take(pPeer == propertyList.get() ? small : source);
    deep.Take(deepSource);

    PrintSizes(peers);
    for (CPeer* pPeer : peers)
        RegisterPeer(*pPeer);
    RegisterFloors(source);
    RegisterDeep(deep, deepSource);
    return RunAll(argc, argv);
}
