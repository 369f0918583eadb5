#include "utils/ParameterSlabs.h"

#include <new>

void CParameterSlabs::NextSlab()
{
    void* pMemory = ::operator new (kUsableSize, std::align_val_t{kSlabSize});
    LeaveSlab();
    m_pSlab = new (pMemory) Slab{1};
    m_pFree = static_cast<std::byte*>(pMemory) + sizeof(Slab);
    m_nLeft = kUsableSize - sizeof(Slab);
}

void CParameterSlabs::LeaveSlab() noexcept
{
    if (m_pSlab)
        Drop(m_pSlab);
}

void CParameterSlabs::Free(Slab* pSlab) noexcept
{
    ::operator delete (pSlab, std::align_val_t{kSlabSize});
}
