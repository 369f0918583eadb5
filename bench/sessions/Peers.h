// The same tree in other formats, each by its own library. Every peer owns what it loads.
#pragma once

#include "bench/sessions/BuiltTree.h"
#include "utils/ParameterBlock.h"

#include <memory>
#include <string>

namespace Bench
{

class CPeer
{
public:
    virtual ~CPeer() = default;
    virtual const char* Name() const = 0;

    /// Not measured: takes the tree over and keeps its bytes.
    virtual void Take(const CParameterBlock& root) = 0;
    virtual std::size_t GetSize() const = 0;

    virtual void Load() = 0; ///< from the bytes
    /// As a program would, value by value and track by track.
    virtual void Build(const BuiltShape& shape) = 0;
    virtual void Free() = 0;   ///< what Load or Build has made
    virtual void Save() = 0;   ///< what Load or Build has made, into memory of its own
    virtual double Walk() = 0; ///< every value
};

std::unique_ptr<CPeer> MakeMsgpack();
std::unique_ptr<CPeer> MakeProtobuf();
std::unique_ptr<CPeer> MakeProtobufOnHeap();
std::unique_ptr<CPeer> MakeCbor();
std::unique_ptr<CPeer> MakeFlexBuffers();
std::unique_ptr<CPeer> MakePropertyList();

} // namespace Bench
