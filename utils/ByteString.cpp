#include "utils/ByteString.h"

#include <new>

void CByteString::SetLong(std::string_view text)
{
    auto* pText =
        new (::operator new(sizeof(Text) + text.size() + 1)) Text{{1}, false, text.size()};
    std::memcpy(pText->Bytes(), text.data(), text.size());
    pText->Bytes()[text.size()] = '\0';
    m_words[0] = reinterpret_cast<std::uintptr_t>(pText);
    m_words[1] = (m_words[1] & kOwnersBit) | std::uint64_t{kLong} << kLastByteShift;
}

void CByteString::Release() noexcept
{
    Text* pText = GetText();
    if (pText->nOwners.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    pText->~Text();
    ::operator delete(pText);
}

char* CByteString::OpenLong()
{
    if (GetText()->nOwners.load(std::memory_order_acquire) != 1)
        *this = CByteString(View());
    GetText()->fLent = true;
    return GetText()->Bytes();
}
