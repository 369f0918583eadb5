// bench-sessions: loading, saving, freeing and walking sessions, beside other formats and beside
// the least that such work can cost. With --benchmark_repetitions=9 and
// --benchmark_enable_random_interleaving=true the figures are steady.
#include "bench/sessions/Peers.h"
#include "bench/sessions/PlainTree.h"
#include "bench/sessions/Trees.h"
#include "bench/support/Measure.h"
#include "utils/ParameterWalk.h"

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

// As Walk of PlainTree.h does.
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

// The tree under test, as a peer among the others.
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
    void Build(const BuiltShape& shape) override
    {
        const auto fill = [&shape](CParameterBlock& block, int nTrack)
        {
            AddValues(nTrack, shape,
                      [&block](const char* pName, const auto& value)
                      { block.AddParameter(pName, value); });
        };
        m_root.emplace();
        if (shape.nTracks == 0)
            fill(*m_root, 0);
        for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
        {
            CParameterBlock track;
            fill(track, nTrack);
            m_root->AddParameter("Track", &track);
        }
    }
    void Free() override { m_root.reset(); }
    void Save() override
    {
        CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
        m_root->SaveBinarySessionToMemory(pData);
        CFRelease(pData);
    }
    double Walk() override { return WalkSession(*m_root); }

    CParameterBlock& Root() { return *m_root; }
    const std::string& Bytes() const { return m_bytes; }

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

// Building a tree, and saving it cold.
void RegisterBuilding(const std::string& strTree, CPeer& peer, const BuiltShape& shape)
{
    const std::string strName = peer.Name();
    const auto free = [&peer] { peer.Free(); };
    Register(strTree + "build/" + strName,
             {[] { malloc_trim(0); }, [&peer, shape] { peer.Build(shape); }, free});
    Register(strTree + "save built/" + strName, {[&peer, shape]
                                                 {
                                                     peer.Build(shape);
                                                     malloc_trim(0);
                                                 },
                                                 [&peer] { peer.Save(); }, free});
}

void RegisterBuildingOfPlainNodes(const std::string& strTree, const BuiltShape& shape)
{
    static PlainNode* pPlain;
    Register(
        strTree + "build/plain nodes",
        {[] { malloc_trim(0); }, [shape] { pPlain = BuildPlain(shape); }, [] { Free(pPlain); }});
    Expect(strTree + "build/tarvane", strTree + "build/plain nodes", 1.2);
    Expect(strTree + "save built/tarvane", strTree + "save built/msgpack-cxx", 0.9);
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

std::size_t LookIntoEveryBlock(const CParameterBlock& root)
{
    int n = 0;
    std::size_t nFound = root.FindParameter("Colour", &n, 0);
    WalkParameters(root,
                   [&](const CParameter& parameter)
                   {
                       if (!IsBlock(parameter))
                           return;
                       const auto& block = static_cast<const CParameterBlock&>(parameter);
                       nFound += block.FindParameter("Colour", &n, 0);
                       nFound += block.FindParameter("Nothing of the name", &n, 0);
                   });
    return nFound;
}

// The operations that have no counterpart in the peers, and the floors of the tree.
void RegisterOperations(const std::string& strTree, CSession& session,
                        const CParameterBlock& source)
{
    static std::optional<CParameterBlock> copy;
    static unsigned char* pFlat;
    static std::string bytes;
    static PlainNode* pPlain;
    const auto load = [&session] { session.Load(); };
    const auto free = [&session] { session.Free(); };
    Register(strTree + "copy/tarvane",
             {load, [&session] { copy.emplace().CopyParameters(&session.Root()); },
              [free]
              {
                  copy.reset();
                  free();
              }});
    Register(strTree + "size/tarvane",
             {load, [&session] { dSink = static_cast<double>(session.Root().GetSize()); }, free});
    Register(strTree + "flat block/tarvane", {load,
                                              [&session]
                                              {
                                                  unsigned long nSize = 0;
                                                  pFlat = session.Root().CreateBlock(&nSize);
                                              },
                                              [free]
                                              {
                                                  delete[] pFlat;
                                                  free();
                                              }});
    Register(strTree + "find/tarvane",
             {load, [&session] { dSink = static_cast<double>(LookIntoEveryBlock(session.Root())); },
              free});
    Register(strTree + "bytes copied/floor",
             {[] { bytes = std::string(); }, [&session] { bytes = session.Bytes(); }, {}});
    Register(strTree + "allocate/plain nodes",
             {{}, [&source] { pPlain = BuildPlain(source); }, [] { Free(pPlain); }});
}

// What RegisterPeer does for the tree of tracks, of a tree that no peer has.
void RegisterOwn(const std::string& strTree, CSession& session, const CParameterBlock& source)
{
    static PlainNode* pPlain;
    const auto load = [&session] { session.Load(); };
    const auto free = [&session] { session.Free(); };
    const auto build = [&source] { pPlain = BuildPlain(source); };
    Register(strTree + "load/tarvane", {{}, load, free});
    Register(strTree + "free/tarvane", {load, free, {}});
    Register(strTree + "walk/tarvane", {load, [&session] { dSink = session.Walk(); }, free});
    Register(strTree + "save/tarvane", {load, [&session] { session.Save(); }, free});
    Register(strTree + "free/plain nodes", {build, [] { Free(pPlain); }, {}});
    Register(strTree + "walk/plain nodes",
             {build, [] { dSink = Walk(*pPlain); }, [] { Free(pPlain); }});
    RegisterOperations(strTree, session, source);
}

// The peers that recurse cannot take part.
void ExpectOfDeep()
{
    Expect("deep load/tarvane", "deep allocate/plain nodes", 1.5);
    Expect("deep copy/tarvane", "deep allocate/plain nodes", 1.5);
    Expect("deep free/tarvane", "deep free/plain nodes", 1.5);
    for (const char* szOperation : {"size", "walk", "flat block", "save", "find"})
        Expect(std::string("deep ") + szOperation + "/tarvane", "deep walk/plain nodes", 1.5);
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

    CParameterBlock source, small, flatSource, deepSource;
    BuildSession(source);
    BuildSession(small, 1);
    BuildFlat(flatSource);
    BuildDeep(deepSource);
    std::printf(
        "%zu values; %zu in the tree of the binary plist; %d in the flat tree; %d levels in "
        "the deep tree\n\n",
        CountValues(source), CountValues(small), kFlatValues, kDeepLevels);

    CSession session, flat, deep;
    const auto msgpack = MakeMsgpack();
    const auto protobuf = MakeProtobuf();
    const auto protobufOnHeap = MakeProtobufOnHeap();
    const auto cbor = MakeCbor();
    const auto flexBuffers = MakeFlexBuffers();
    const auto propertyList = MakePropertyList();
    const std::vector<CPeer*> peers{
        &session,   msgpack.get(),     protobuf.get(),    protobufOnHeap.get(),
        cbor.get(), flexBuffers.get(), propertyList.get()};
    for (CPeer* pPeer : peers)
        pPeer->Take(pPeer == propertyList.get() ? small : source);
    flat.Take(flatSource);
    deep.Take(deepSource);

    PrintSizes(peers);
    for (CPeer* pPeer : peers)
        RegisterPeer(*pPeer);
    RegisterFloors(source);
    for (CPeer* pPeer : peers)
        if (pPeer == propertyList.get())
            RegisterBuilding("small ", *pPeer, kBuiltSmall);
        else
            for (const auto& [strTree, shape] :
                 {std::pair("", kBuiltTracks), {"flat ", kBuiltFlat}})
                RegisterBuilding(strTree, *pPeer, shape);
    RegisterBuildingOfPlainNodes("", kBuiltTracks);
    RegisterBuildingOfPlainNodes("flat ", kBuiltFlat);
    RegisterOperations("", session, source);
    RegisterOwn("flat ", flat, flatSource);
    RegisterOwn("deep ", deep, deepSource);
    ExpectOfDeep();
    return RunAll(argc, argv);
}
