// The floors: the same tree as plain objects, one allocation and one string a node.
#pragma once

#include "bench/sessions/BuiltTree.h"
#include "utils/ParameterBlock.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace Bench
{

struct PlainNode
{
    std::string strName;
    std::variant<std::string, int, double, unsigned long long, bool, float, long long> value;
    std::vector<PlainNode*> children;
    bool fBlock = false;
};

/// Any depth. The caller frees it with Free.
PlainNode* BuildPlain(const CParameterBlock& block);
PlainNode* BuildPlain(const BuiltShape& shape);
void Free(PlainNode* pNode);

/// Adds all numbers and all lengths of strings, each name compared with those that are looked for:
/// what a reader does with a session.
double Walk(const PlainNode& node);

} // namespace Bench
