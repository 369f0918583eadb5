#include "colours/ComponentColour.h"

#include "utils/ParameterBlock.h"

#import <AppKit/AppKit.h>

namespace
{
constexpr const char* szModule = "Mod";
constexpr const char* szComponentID = "CompID";
constexpr const char* szCode = "Code";
} // namespace

void CComponentCode::Save(CParameterBlock* pBlock) const
{
    CParameterBlock code;
    code.AddParameter(szModule, m_nModule);
    code.AddParameter(szComponentID, m_nComponent);
    pBlock->AddParameter(szCode, &code);
}

bool CComponentCode::Load(CParameterBlock* pBlock)
{
    CParameterBlock* pCode = nullptr;
    if (!pBlock->FindParameter(szCode, &pCode))
        return false;
    const bool fModule = pCode->FindParameter(szModule, &m_nModule, 0);
    const bool fComponent = pCode->FindParameter(szComponentID, &m_nComponent, 0);
    return fModule && fComponent;
}

CComponentColour::CComponentColour(CComponentCode code) : m_Code(code) {}

CComponentColour::CComponentColour(CComponentCode code, const char* pName, double dRed,
                                   double dGreen, double dBlue, double dAlpha,
                                   CGColorSpaceRef pSpace, bool fEditable)
    : m_dRed(dRed), m_dGreen(dGreen), m_dBlue(dBlue), m_dAlpha(dAlpha), m_fEditable(fEditable),
      m_Code(code), m_strName(pName)
{
    m_refColor = CGColorCreate(pSpace, &m_dRed);
    MakeNSColor();
}

CComponentColour::~CComponentColour()
{
    CGColorRelease(m_refColor);
    [m_pNSColor release];
}

void CComponentColour::Save(CParameterBlock* pBlock)
{
    pBlock->AddParameter(szType, int(kTypeColour));
    m_Code.Save(pBlock);
    // The saved form follows the width of CGFloat, while Load always asks for doubles: kept so.
    pBlock->AddParameter(szRed, m_dRed);
    pBlock->AddParameter(szGreen, m_dGreen);
    pBlock->AddParameter(szBlue, m_dBlue);
    pBlock->AddParameter(szAlpha, m_dAlpha);
    pBlock->AddParameter(szName, m_strName.c_str());
    pBlock->AddParameter(szEditable, m_fEditable);
}

bool CComponentColour::Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace)
{
    bool fComplete = m_Code.Load(pBlock);
    const auto find = [&](const char* pKey, CGFloat* pNumber)
    {
        double dValue = 0;
        fComplete &= pBlock->FindParameter(pKey, &dValue, 0.0);
        *pNumber = dValue;
    };
    find(szRed, &m_dRed);
    find(szGreen, &m_dGreen);
    find(szBlue, &m_dBlue);
    find(szAlpha, &m_dAlpha);
    fComplete &= pBlock->FindParameter(szName, &m_strName, "");
    fComplete &= pBlock->FindParameter(szEditable, &m_fEditable, true);

    // A failed load leaves no CGColor but does leave an NSColor: the two go separate ways on
    // purpose.
    CGColorRelease(m_refColor);
    m_refColor = fComplete ? CGColorCreate(pSpace, &m_dRed) : nullptr;
    [m_pNSColor release];
    MakeNSColor();
    return fComplete;
}

CComponentColour& CComponentColour::operator=(CComponentColour& other)
{
    m_fEditable = other.m_fEditable;
    m_Code = other.m_Code;
    m_strName = other.m_strName;
    UpdateColour(other.m_dRed, other.m_dGreen, other.m_dBlue, other.m_dAlpha);
    return *this;
}

void CComponentColour::UpdateColour(double dRed, double dGreen, double dBlue, double dAlpha)
{
    m_dRed = dRed;
    m_dGreen = dGreen;
    m_dBlue = dBlue;
    m_dAlpha = dAlpha;
    CGColorRelease(m_refColor);
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    m_refColor = CGColorCreate(space, &m_dRed);
    CGColorSpaceRelease(space);
    [m_pNSColor release];
    MakeNSColor();
}

void CComponentColour::MakeNSColor()
{
    m_pNSColor = [[NSColor colorWithCalibratedRed:m_dRed green:m_dGreen blue:m_dBlue
                                            alpha:m_dAlpha] retain];
}
