#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// A session told independently of the code under test: a reader that takes only what is fully well
/// formed, and a writer.
namespace SessionCodec
{
struct Node
{
    unsigned nType = 6;
    std::uint32_t nToken = 0;
    std::string payload; ///< As it stands in the file; of a string without its length.
    std::vector<Node> children;

    friend bool operator==(const Node&, const Node&) = default;
};

struct Session
{
    std::uint32_t nVersion = 100;
    std::vector<std::string> names; ///< names[0] is token 1.
    Node root;

    const std::string& NameOf(const Node& node) const;
};

struct Malformed : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Throws Malformed, also where bytes are left over.
Session Decode(const std::string& bytes);
std::string Encode(const Session& session);
} // namespace SessionCodec
