#include "utils/ParameterSlabs.h"

#include <cstdlib>
#include <new>

void CParameterSlabs::NextSlab()
{
    // The aligned operator new would round the size up to the next multiple of the alignment, so
    // that no slab could lie straight behind another one.
    void* pMemory = nullptr;
    if (posix_memalign(&pMemory, kSlabSize, kUsableSize) != 0)
        throw std::bad_alloc();
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
    std::free(pSlab);
}
