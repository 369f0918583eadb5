#pragma once

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

/// A byte string that is never changed in place, only assigned; zero bytes may stand in it. It
/// takes 16 bytes: up to 15 bytes of text lie in the object itself, a longer text lies in one
/// allocation that all copies share. Trees of parameters hold the same few names millions of times.
///
/// Two threads may hold copies of one text; one object belongs to one thread at a time.
///
///     byte   0                                    14  15
///     short  text, padded with zeros              ..  15 - length, which ends a full text
///     long   Text*   unused                       ..  0xFF
class CByteString
{
public:
    static constexpr unsigned char kMostInside = 15; ///< A longer text needs an allocation.

    CByteString() noexcept { SetEmpty(); }
    CByteString(std::string_view text) { Set(text); }
    /// A null pointer gives the empty string.
    CByteString(const char* pText) { Set(pText ? std::string_view(pText) : std::string_view()); }
    CByteString(const std::string& text) { Set(text); }

    CByteString(const CByteString& other) noexcept : m_words{other.m_words[0], other.m_words[1]}
    {
        if (IsLong())
            GetText()->nOwners.fetch_add(1, std::memory_order_relaxed);
    }

    CByteString(CByteString&& other) noexcept : m_words{other.m_words[0], other.m_words[1]}
    {
        other.SetEmpty();
    }

    CByteString& operator=(const CByteString& other) noexcept { return *this = CByteString(other); }
    CByteString& operator=(CByteString&& other) noexcept
    {
        std::swap(m_words, other.m_words);
        return *this;
    }

    ~CByteString()
    {
        if (IsLong())
            Release();
    }

    /// Ends in a zero byte behind size() bytes.
    const char* c_str() const noexcept
    {
        return IsLong() ? GetText()->Bytes() : reinterpret_cast<const char*>(m_words);
    }
    const char* data() const noexcept { return c_str(); }
    std::size_t size() const noexcept
    {
        return IsLong() ? GetText()->nSize : kMostInside - LastByte();
    }
    bool empty() const noexcept { return LastByte() == kMostInside; }

    operator std::string_view() const noexcept { return {c_str(), size()}; }
    std::string str() const { return {c_str(), size()}; }

    friend bool operator==(const CByteString& a, const CByteString& b) noexcept
    {
        return a.HasSameBytes(b) ||
               (a.IsLong() && b.IsLong() && std::string_view(a) == std::string_view(b));
    }
    friend bool operator==(const CByteString& a, std::string_view b) noexcept
    {
        return std::string_view(a) == b;
    }
    friend bool operator==(const CByteString& a, const char* b) noexcept
    {
        return std::string_view(a) == b;
    }
    friend bool operator==(const CByteString& a, const std::string& b) noexcept
    {
        return std::string_view(a) == b;
    }

    /// True for two short strings of the same text and for two copies of one long string. False
    /// says nothing about two long strings. The quick half of a comparison, for look-ups by name.
    bool HasSameBytes(const CByteString& other) const noexcept
    {
        return m_words[0] == other.m_words[0] && m_words[1] == other.m_words[1];
    }

    /// Equal for equal strings.
    std::size_t Hash() const noexcept
    {
        return IsLong() ? std::hash<std::string_view>()(*this) : Mix(m_words[0], m_words[1]);
    }

private:
    struct Text
    {
        std::atomic<std::size_t> nOwners;
        std::size_t nSize;
        char* Bytes() { return reinterpret_cast<char*>(this + 1); }
    };

    static constexpr unsigned char kLong = 0xFF;
    static constexpr int kLastByteShift = 56;
    static_assert(std::endian::native == std::endian::little);

    unsigned char LastByte() const noexcept
    {
        return static_cast<unsigned char>(m_words[1] >> kLastByteShift);
    }
    static std::size_t Mix(std::uint64_t a, std::uint64_t b) noexcept
    {
        std::uint64_t n = a ^ std::rotl(b, 29);
        n ^= n >> 32; // A product passes nothing down: the last characters would count for nothing.
        return static_cast<std::size_t>(n * 0x9E3779B97F4A7C15u >> 32);
    }
    bool IsLong() const noexcept { return LastByte() == kLong; }

    Text* GetText() const noexcept
    {
        return reinterpret_cast<Text*>(static_cast<std::uintptr_t>(m_words[0]));
    }

    void SetEmpty() noexcept { SetSize(0); }
    void SetSize(std::size_t nSize) noexcept
    {
        m_words[0] = 0;
        m_words[1] = std::uint64_t{kMostInside - nSize} << kLastByteShift;
    }

    void Set(std::string_view text)
    {
        if (text.size() > kMostInside)
        {
            SetLong(text);
            return;
        }
        SetSize(text.size());
        if (!text.empty())
            std::memcpy(m_words, text.data(), text.size());
    }

    void SetLong(std::string_view text);
    void Release() noexcept;

    // Whole words: a byte stored just before would hold up the next copy of all 16.
    std::uint64_t m_words[2];
};
