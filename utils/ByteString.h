#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

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

    CByteString(const CByteString& other) noexcept
    {
        std::memcpy(m_bytes, other.m_bytes, sizeof m_bytes);
        if (IsLong())
            GetText()->nOwners.fetch_add(1, std::memory_order_relaxed);
    }

    CByteString(CByteString&& other) noexcept
    {
        std::memcpy(m_bytes, other.m_bytes, sizeof m_bytes);
        other.SetEmpty();
    }

    CByteString& operator=(CByteString other) noexcept
    {
        swap(other);
        return *this;
    }

    ~CByteString()
    {
        if (IsLong())
            Release();
    }

    void swap(CByteString& other) noexcept
    {
        unsigned char bytes[sizeof m_bytes];
        std::memcpy(bytes, m_bytes, sizeof m_bytes);
        std::memcpy(m_bytes, other.m_bytes, sizeof m_bytes);
        std::memcpy(other.m_bytes, bytes, sizeof m_bytes);
    }

    /// Ends in a zero byte behind size() bytes.
    const char* c_str() const noexcept
    {
        return IsLong() ? GetText()->Bytes() : reinterpret_cast<const char*>(m_bytes);
    }
    const char* data() const noexcept { return c_str(); }
    std::size_t size() const noexcept
    {
        return IsLong() ? GetText()->nSize : kMostInside - m_bytes[kMostInside];
    }
    bool empty() const noexcept { return m_bytes[kMostInside] == kMostInside; }

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
        return std::memcmp(m_bytes, other.m_bytes, sizeof m_bytes) == 0;
    }

    /// Equal wherever HasSameBytes is true.
    std::size_t QuickHash() const noexcept
    {
        std::uint64_t words[2];
        std::memcpy(words, m_bytes, sizeof words);
        return static_cast<std::size_t>(((words[0] ^ (words[1] << 1)) * 0x9E3779B97F4A7C15u) >> 32);
    }

private:
    struct Text
    {
        std::atomic<std::size_t> nOwners;
        std::size_t nSize;
        char* Bytes() { return reinterpret_cast<char*>(this + 1); }
    };

    static constexpr unsigned char kLong = 0xFF;

    bool IsLong() const noexcept { return m_bytes[kMostInside] == kLong; }

    Text* GetText() const noexcept
    {
        Text* pText;
        std::memcpy(&pText, m_bytes, sizeof pText);
        return pText;
    }

    void SetEmpty() noexcept
    {
        std::memset(m_bytes, 0, sizeof m_bytes);
        m_bytes[kMostInside] = kMostInside;
    }

    void Set(std::string_view text)
    {
        SetEmpty();
        if (text.size() > kMostInside)
        {
            SetLong(text);
            return;
        }
        if (!text.empty())
            std::memcpy(m_bytes, text.data(), text.size());
        m_bytes[kMostInside] = static_cast<unsigned char>(kMostInside - text.size());
    }

    void SetLong(std::string_view text);
    void Release() noexcept;

    alignas(void*) unsigned char m_bytes[kMostInside + 1];
};
