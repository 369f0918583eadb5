#include "utils/ParameterPool.h"

#include <new>

CParameterPool::~CParameterPool()
{
    // The pool itself counts as one that lives in its last slab.
    if (m_pSlab && --m_pSlab->nLive == 0)
        Free(m_pSlab);
}

void CParameterPool::NextSlab()
{
    void* pMemory = ::operator new (kUsableSize, std::align_val_t{kSlabSize});
    if (m_pSlab && --m_pSlab->nLive == 0)
        Free(m_pSlab);
    m_pSlab = new (pMemory) Slab{1};
    m_pFree = static_cast<std::byte*>(pMemory) + sizeof(Slab);
    m_nLeft = kUsableSize - sizeof(Slab);
}

void CParameterPool::Free(Slab* pSlab) noexcept
{
    ::operator delete (pSlab, std::align_val_t{kSlabSize});
}
