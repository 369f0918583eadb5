#pragma once

#include <atomic>
#include <bit>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class CByteString;

/// What a byte string is compared and joined with: string literals, std::string, std::string_view.
template <class Other>
concept ByteStringText = std::convertible_to<const Other&, std::string_view> &&
    !std::same_as<std::remove_cvref_t<Other>, CByteString>;

/// A byte string of 16 bytes for the names and texts of parameters; zero bytes may stand in it.
/// Trees hold the same few names millions of times: up to 14 bytes of text lie in the object
/// itself, a longer text lies in one allocation that all copies share.
///
/// It has the operations of std::string and converts to one and from one by value. What it cannot:
/// bind to std::string& or std::string*, so that std::getline does not read into it; stand in a
/// conditional expression beside a std::string (convert one of the two by name); lend its
/// iterators and char& for longer than until the next change, as any string. Changing one in place
/// costs the making of a new text, but for writing through [], at(), front(), back(), data() and
/// iterators.
///
/// Two threads may hold copies of one text; one object belongs to one thread at a time.
///
///     byte   0                                    14  15
///     short  text, padded with zeros              0   size
///     long   Text*   zeros                        0   0x80
class CByteString
{
public:
    using value_type = char;
    using traits_type = std::char_traits<char>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = char&;
    using const_reference = const char&;
    using pointer = char*;
    using const_pointer = const char*;
    using iterator = char*;
    using const_iterator = const char*;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    static constexpr size_type npos = std::string::npos;
    static constexpr unsigned char kMostInside = 14; ///< A longer text needs an allocation.

    CByteString() noexcept = default;
    CByteString(std::string_view text) { Set(text); }
    /// A null pointer gives the empty string.
    CByteString(const char* pText) { Set(pText ? std::string_view(pText) : std::string_view()); }
    CByteString(const std::string& text) { Set(text); }
    CByteString(const char* pText, size_type nSize) { Set({pText, nSize}); }
    CByteString(size_type nSize, char c) { Set(std::string(nSize, c)); }

    CByteString(const CByteString& other)
        : m_words{other.m_words[0], other.m_words[1] & ~kOwnersBit}
    {
        if (IsLong())
            ShareText();
    }

    CByteString(CByteString&& other) noexcept { swap(other); }

    CByteString& operator=(const CByteString& other) { return *this = CByteString(other); }
    CByteString& operator=(CByteString&& other) noexcept
    {
        swap(other);
        return *this;
    }
    CByteString& operator=(char c) { return *this = CByteString(1, c); }
    CByteString& operator=(std::initializer_list<char> list) { return *this = std::string(list); }

    ~CByteString()
    {
        if (IsLong())
            Release();
    }

    void swap(CByteString& other) noexcept
    {
        std::swap(m_words, other.m_words);
        const std::uint64_t nDifferent = (m_words[1] ^ other.m_words[1]) & kOwnersBit;
        m_words[1] ^= nDifferent;
        other.m_words[1] ^= nDifferent;
    }
    void swap(std::string& other)
    {
        std::string old = str();
        *this = other;
        other.swap(old);
    }
    friend void swap(CByteString& a, CByteString& b) noexcept { a.swap(b); }

    operator std::string_view() const noexcept { return {c_str(), size()}; }
    operator std::string() const { return str(); }
    std::string str() const { return {c_str(), size()}; }

    /// Ends in a zero byte behind size() bytes.
    const char* c_str() const noexcept { return IsLong() ? GetText()->Bytes() : Inside(); }
    const char* data() const noexcept { return c_str(); }
    char* data() { return Open(); }

    size_type size() const noexcept { return IsLong() ? GetText()->nSize : LastByte() & kSizeBits; }
    size_type length() const noexcept { return size(); }
    bool empty() const noexcept { return (LastByte() & (kLong | kSizeBits)) == 0; }
    size_type max_size() const noexcept { return std::string_view().max_size(); }
    size_type capacity() const noexcept { return size() > kMostInside ? size() : kMostInside; }
    void reserve(size_type = 0) noexcept {}
    void shrink_to_fit() noexcept {}

    iterator begin() { return Open(); }
    iterator end() { return Open() + size(); }
    const_iterator begin() const noexcept { return c_str(); }
    const_iterator end() const noexcept { return c_str() + size(); }
    const_iterator cbegin() const noexcept { return begin(); }
    const_iterator cend() const noexcept { return end(); }
    reverse_iterator rbegin() { return reverse_iterator(end()); }
    reverse_iterator rend() { return reverse_iterator(begin()); }
    const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
    const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    const_reverse_iterator crend() const noexcept { return rend(); }

    const char& operator[](size_type nIndex) const noexcept { return c_str()[nIndex]; }
    char& operator[](size_type nIndex) { return Open()[nIndex]; }
    /// std::out_of_range as std::string.
    const char& at(size_type nIndex) const { return View().at(nIndex); }
    char& at(size_type nIndex)
    {
        static_cast<void>(View().at(nIndex));
        return Open()[nIndex];
    }
    const char& front() const noexcept { return c_str()[0]; }
    const char& back() const noexcept { return c_str()[size() - 1]; }
    char& front() { return Open()[0]; }
    char& back() { return Open()[size() - 1]; }

    /// As std::string_view has them, which is as std::string has them.
    template <class... Args> size_type find(const Args&... args) const
    {
        return View().find(args...);
    }
    template <class... Args> size_type rfind(const Args&... args) const
    {
        return View().rfind(args...);
    }
    template <class... Args> size_type find_first_of(const Args&... args) const
    {
        return View().find_first_of(args...);
    }
    template <class... Args> size_type find_last_of(const Args&... args) const
    {
        return View().find_last_of(args...);
    }
    template <class... Args> size_type find_first_not_of(const Args&... args) const
    {
        return View().find_first_not_of(args...);
    }
    template <class... Args> size_type find_last_not_of(const Args&... args) const
    {
        return View().find_last_not_of(args...);
    }
    template <class... Args> int compare(const Args&... args) const
    {
        return View().compare(args...);
    }
    template <class Part> bool starts_with(const Part& part) const
    {
        return View().starts_with(part);
    }
    template <class Part> bool ends_with(const Part& part) const { return View().ends_with(part); }
    size_type copy(char* pTarget, size_type nCount, size_type nFrom = 0) const
    {
        return View().copy(pTarget, nCount, nFrom);
    }
    std::string substr(size_type nFrom = 0, size_type nCount = npos) const
    {
        return std::string(View().substr(nFrom, nCount));
    }

    /// As std::string has them, and by way of one.
    template <class... Args> CByteString& assign(Args&&... args)
    {
        return Change([&](std::string& text) { text.assign(Plain(args)...); });
    }
    CByteString& assign(std::initializer_list<char> list) { return *this = list; }
    template <class... Args> CByteString& append(Args&&... args)
    {
        return Change([&](std::string& text) { text.append(Plain(args)...); });
    }
    CByteString& append(std::initializer_list<char> list)
    {
        return Change([&](std::string& text) { text.append(list); });
    }
    template <std::integral Index, class... Args> CByteString& insert(Index nAt, Args&&... args)
    {
        return Change([&](std::string& text)
                      { text.insert(static_cast<size_type>(nAt), Plain(args)...); });
    }
    template <class... Args> iterator insert(const_iterator at, Args&&... args)
    {
        const difference_type nAt = at - cbegin();
        Change([&](std::string& text) { text.insert(text.begin() + nAt, Plain(args)...); });
        return begin() + nAt;
    }
    CByteString& erase() { return *this = CByteString(); }
    template <std::integral Index> CByteString& erase(Index nFrom, size_type nCount = npos)
    {
        return Change([&](std::string& text)
                      { text.erase(static_cast<size_type>(nFrom), nCount); });
    }
    iterator erase(const_iterator at) { return erase(at, at + 1); }
    iterator erase(const_iterator first, const_iterator last)
    {
        const difference_type nFrom = first - cbegin();
        Change([&](std::string& text)
               { text.erase(text.begin() + nFrom, text.begin() + (last - cbegin())); });
        return begin() + nFrom;
    }
    template <std::integral Index, class... Args>
    CByteString& replace(Index nFrom, size_type nCount, Args&&... args)
    {
        return Change([&](std::string& text)
                      { text.replace(static_cast<size_type>(nFrom), nCount, Plain(args)...); });
    }
    template <class... Args>
    CByteString& replace(const_iterator first, const_iterator last, Args&&... args)
    {
        return replace(static_cast<size_type>(first - cbegin()),
                       static_cast<size_type>(last - first), std::forward<Args>(args)...);
    }
    void resize(size_type nSize, char c = '\0')
    {
        Change([&](std::string& text) { text.resize(nSize, c); });
    }
    void push_back(char c) { append(1, c); }
    void pop_back() { erase(size() - 1); }
    void clear() noexcept { *this = CByteString(); }

    template <ByteStringText Other> CByteString& operator+=(const Other& other)
    {
        return append(std::string_view(other));
    }
    CByteString& operator+=(const CByteString& other) { return append(other); }
    CByteString& operator+=(char c) { return append(1, c); }

    friend std::string operator+(const CByteString& a, const CByteString& b)
    {
        return a.str().append(b.View());
    }
    template <ByteStringText Other>
    friend std::string operator+(const CByteString& a, const Other& b)
    {
        return a.str().append(std::string_view(b));
    }
    template <ByteStringText Other>
    friend std::string operator+(const Other& a, const CByteString& b)
    {
        return std::string(std::string_view(a)).append(b.View());
    }
    friend std::string operator+(const CByteString& a, char b) { return a.str() + b; }
    friend std::string operator+(char a, const CByteString& b) { return a + b.str(); }

    friend bool operator==(const CByteString& a, const CByteString& b) noexcept
    {
        return a.HasSameBytes(b) || (a.IsLong() && b.IsLong() && a.View() == b.View());
    }
    template <ByteStringText Other>
    friend bool operator==(const CByteString& a, const Other& b) noexcept
    {
        return a.View() == std::string_view(b);
    }
    friend std::strong_ordering operator<=>(const CByteString& a, const CByteString& b) noexcept
    {
        // Not every C++ library orders views by <=>.
        return a.View().compare(b.View()) <=> 0;
    }
    template <ByteStringText Other>
    friend std::strong_ordering operator<=>(const CByteString& a, const Other& b) noexcept
    {
        return a.View().compare(std::string_view(b)) <=> 0;
    }

    template <class Traits>
    friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                        const CByteString& strText)
    {
        return out << std::basic_string_view<char, Traits>(strText.data(), strText.size());
    }
    template <class Traits>
    friend std::basic_istream<char, Traits>& operator>>(std::basic_istream<char, Traits>& in,
                                                        CByteString& strText)
    {
        std::basic_string<char, Traits> text;
        in >> text;
        strText = std::string_view(text.data(), text.size());
        return in;
    }

    /// True for two short strings of the same text and for two copies of one long string. False
    /// says nothing about two long strings. The quick half of a comparison, for look-ups by name.
    bool HasSameBytes(const CByteString& other) const noexcept
    {
        return ((m_words[0] ^ other.m_words[0]) |
                ((m_words[1] ^ other.m_words[1]) & ~kOwnersBit)) == 0;
    }

    /// Equal for equal strings.
    std::size_t Hash() const noexcept
    {
        return IsLong() ? std::hash<std::string_view>()(*this)
                        : Mix(m_words[0], m_words[1] & ~kOwnersBit);
    }

private:
    friend class CParameter; ///< For the owner's bit.

    struct Text
    {
        std::atomic<std::uint32_t> nOwners;
        /// A char& or an iterator may be about: a copy then takes a text of its own.
        bool fLent;
        std::size_t nSize;
        char* Bytes() { return reinterpret_cast<char*>(this + 1); }
    };

    static constexpr int kLastByteShift = 56;
    static constexpr unsigned char kLong = 0x80;
    static constexpr unsigned char kSizeBits = 0x0F;
    /// Belongs to the object and not to its text: nothing here copies, compares or changes it.
    static constexpr std::uint64_t kOwnersBit = std::uint64_t{0x40} << kLastByteShift;
    static_assert(std::endian::native == std::endian::little);

    bool GetOwnersBit() const noexcept { return (m_words[1] & kOwnersBit) != 0; }
    void SetOwnersBit() noexcept { m_words[1] |= kOwnersBit; }

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
    bool IsLong() const noexcept { return (LastByte() & kLong) != 0; }

    std::string_view View() const noexcept { return *this; }
    const char* Inside() const noexcept { return reinterpret_cast<const char*>(m_words); }
    Text* GetText() const noexcept
    {
        return reinterpret_cast<Text*>(static_cast<std::uintptr_t>(m_words[0]));
    }

    /// Of an empty string.
    void Set(std::string_view text)
    {
        if (text.size() > kMostInside)
        {
            SetLong(text);
            return;
        }
        if (!text.empty())
            std::memcpy(m_words, text.data(), text.size());
        m_words[1] |= std::uint64_t{text.size()} << kLastByteShift;
    }

    void SetLong(std::string_view text);
    void Release() noexcept;

    /// Behind a copy of the pointer.
    void ShareText()
    {
        if (GetText()->fLent)
            SetLong({GetText()->Bytes(), GetText()->nSize});
        else
            GetText()->nOwners.fetch_add(1, std::memory_order_relaxed);
    }

    /// The bytes for writing to, on behalf of whoever keeps the pointer.
    char* Open() { return IsLong() ? OpenLong() : reinterpret_cast<char*>(m_words); }
    char* OpenLong();

    /// What std::string takes, which knows nothing of a CByteString.
    template <class Arg> static decltype(auto) Plain(Arg& arg)
    {
        if constexpr (std::same_as<std::remove_cv_t<Arg>, CByteString>)
            return arg.View();
        else
            return (arg);
    }

    template <class F> CByteString& Change(F&& change)
    {
        std::string text = str();
        change(text);
        return *this = CByteString(text);
    }

    /// Whole words: a byte stored just before would hold up the next copy of all 16.
    std::uint64_t m_words[2] = {0, 0};
};

template <> struct std::hash<CByteString>
{
    std::size_t operator()(const CByteString& strText) const noexcept { return strText.Hash(); }
};
