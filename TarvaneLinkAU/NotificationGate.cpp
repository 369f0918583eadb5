#include "TarvaneLinkAU/NotificationGate.h"

constinit CNotificationGate CNotificationGate::s_gates[kStaticGates];

CNotificationGate& CNotificationGate::OpenFor(const void* pView)
{
    CNotificationGate* pGate = &FirstFor(pView);
    for (const void* pThere = nullptr;
         !pGate->m_pView.compare_exchange_strong(pThere, pView) && pThere != pView;
         pThere = nullptr)
    {
        CNotificationGate* pNext = pGate->m_pNext.load();
        if (pNext == nullptr)
        {
            auto* pMore = new CNotificationGate;
            if (pGate->m_pNext.compare_exchange_strong(pNext, pMore))
                pNext = pMore;
            else
                delete pMore;
        }
        pGate = pNext;
    }
    pGate->m_nState.fetch_and(~(kClosed | kPaused));
    return *pGate;
}
