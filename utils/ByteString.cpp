#include "utils/ByteString.h"

#include <new>

void CByteString::SetLong(std::string_view text)
{
    auto* pText = new (::operator new(sizeof(Text) + text.size() + 1)) Text{{1}, text.size()};
    std::memcpy(pText->Bytes(), text.data(), text.size());
    pText->Bytes()[text.size()] = '\0';
    m_words[0] = reinterpret_cast<std::uintptr_t>(pText);
    m_words[1] = std::uint64_t{kLong} << kLastByteShift;
}

void CByteString::Release() noexcept
{
    Text* pText = GetText();
    if (pText->nOwners.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    pText->~Text();
    ::operator delete(pText);
}
