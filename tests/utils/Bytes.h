#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// Builds a buffer by hand, number by number, little-endian.
class Bytes
{
public:
    Bytes& U8(unsigned n) { return Number(n, 1); }
    Bytes& U32(std::uint64_t n) { return Number(n, 4); }
    Bytes& U64(std::uint64_t n) { return Number(n, 8); }
    Bytes& F32(float f)
    {
        std::uint32_t n;
        std::memcpy(&n, &f, sizeof n);
        return U32(n);
    }
    Bytes& F64(double d)
    {
        std::uint64_t n;
        std::memcpy(&n, &d, sizeof n);
        return U64(n);
    }
    Bytes& Text(std::string_view text)
    {
        m_bytes += text;
        return *this;
    }
    /// u32 length and text: an inline name, or a string's payload.
    Bytes& Counted(std::string_view text) { return U32(text.size()).Text(text); }
    Bytes& Magic() { return Text("[TNE Binary Session File]").U8(0); }

    const std::string& Get() const { return m_bytes; }
    operator const std::string&() const { return m_bytes; }

private:
    Bytes& Number(std::uint64_t n, int nBytes)
    {
        for (int i = 0; i < nBytes; ++i)
            m_bytes += static_cast<char>(n >> (8 * i));
        return *this;
    }

    std::string m_bytes;
};

/// A copy on the heap of exactly these bytes, so that the address sanitizer sees any step outside.
class ExactBuffer
{
public:
    explicit ExactBuffer(const std::string& bytes)
        : m_nSize(bytes.size()), m_pBytes(new unsigned char[bytes.size()])
    {
        if (m_nSize > 0)
            std::memcpy(m_pBytes, bytes.data(), m_nSize);
    }
    ExactBuffer(const ExactBuffer&) = delete;
    ExactBuffer& operator=(const ExactBuffer&) = delete;
    ~ExactBuffer() { delete[] m_pBytes; }

    unsigned char* Get() { return m_pBytes; }
    unsigned int Size() const { return static_cast<unsigned int>(m_nSize); }

private:
    std::size_t m_nSize;
    unsigned char* m_pBytes;
};
