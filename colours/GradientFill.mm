#include "colours/GradientFill.h"

#include "utils/ParameterBlock.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <vector>

namespace
{
constexpr const char* szPosition = "Position";
constexpr const char* szColor = "Color";
constexpr const char* szGradientComponent = "GradColor";

constexpr CComponentCode kNoCode(0, 0);

// As "%f" in the C locale, whatever the process's locale is: the text is source code.
std::string Decimal(double dValue)
{
    char text[350]; // the largest double has 309 digits before its point
    const auto end = std::to_chars(text, text + sizeof text, dValue, std::chars_format::fixed, 6);
    return std::string(text, end.ptr);
}
} // namespace

CGradComponent::CGradComponent(float fPosition, CComponentCode code)
    : CComponentColour(code), m_fPosition(fPosition)
{
}

CGradComponent::CGradComponent(double dPosition, double dRed, double dGreen, double dBlue,
                               double dAlpha, CGColorSpaceRef pSpace, bool fEditable)
    : CComponentColour(kNoCode, "", dRed, dGreen, dBlue, dAlpha, pSpace, fEditable),
      m_fPosition(float(dPosition))
{
}

void CGradComponent::Save(CParameterBlock* pBlock)
{
    pBlock->AddParameter(szPosition, m_fPosition);
    CParameterBlock colour;
    CComponentColour::Save(&colour);
    pBlock->AddParameter(szColor, &colour);
}

bool CGradComponent::Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace)
{
    CParameterBlock* pColour = nullptr;
    const bool fPosition = pBlock->FindParameter(szPosition, &m_fPosition, 0.0f);
    const bool fColour = pBlock->FindParameter(szColor, &pColour);
    return fPosition && fColour && CComponentColour::Load(pColour, pSpace);
}

CGradComponent& CGradComponent::operator=(CGradComponent& other)
{
    m_fPosition = other.m_fPosition;
    CComponentColour::operator=(other);
    return *this;
}

CGradientFill::CGradientFill(CComponentCode code) : CComponentColour(code) {}

CGradientFill::CGradientFill(CComponentCode code, const char* pName, bool fEditable)
    : CComponentColour(code)
{
    m_strName = pName;
    m_fEditable = fEditable;
}

CGradientFill::~CGradientFill() { Clear(); }

void CGradientFill::Clear()
{
    CGGradientRelease(m_refGradient);
    m_refGradient = nullptr;
    for (CGradComponent* pStop : m_Stops)
        delete pStop;
    m_Stops.clear();
}

void CGradientFill::Insert(CGradComponent* pStop)
{
    if (!m_Stops.insert(pStop).second)
        delete pStop;
}

void CGradientFill::AddColor(double dPosition, double dRed, double dGreen, double dBlue,
                             double dAlpha, CGColorSpaceRef pSpace, bool fEditable,
                             double dMultiplier)
{
    const auto clamped = [](double dNumber) { return std::min(dNumber, 1.0); };
    Insert(new CGradComponent(dPosition, clamped(dRed * dMultiplier), clamped(dGreen * dMultiplier),
                              clamped(dBlue * dMultiplier), clamped(dAlpha), pSpace, fEditable));
}

void CGradientFill::DeleteColor(CGradComponent* pStop)
{
    const auto found = std::find(m_Stops.begin(), m_Stops.end(), pStop);
    if (found == m_Stops.end())
        return;
    m_Stops.erase(found);
    delete pStop;
}

void CGradientFill::Create(CGColorSpaceRef pSpace)
{
    CGGradientRelease(m_refGradient);
    m_refGradient = nullptr;

    std::vector<const void*> colours;
    std::vector<CGFloat> locations;
    for (const CGradComponent* pStop : m_Stops)
    {
        colours.push_back(pStop->m_refColor);
        locations.push_back(pStop->m_fPosition);
    }
    CFArrayRef array =
        CFArrayCreate(kCFAllocatorDefault, colours.data(), CFIndex(colours.size()), nullptr);
    m_refGradient = CGGradientCreateWithColors(pSpace, array, locations.data());
    CFRelease(array);
}

void CGradientFill::DumpCode()
{
    fprintf(stderr, "\t{\n");
    fprintf(stderr, "\t\tCGradientFill *pFill = new CGradientFill(XXXX, \"%s\", true);\n",
            m_strName.c_str());
    for (const CGradComponent* pStop : m_Stops)
        fprintf(stderr, "\t\tpFill->AddColor(%s, %s, %s, %s, %s, refSpace, true);\n",
                Decimal(pStop->m_fPosition).c_str(), Decimal(pStop->m_dRed).c_str(),
                Decimal(pStop->m_dGreen).c_str(), Decimal(pStop->m_dBlue).c_str(),
                Decimal(pStop->m_dAlpha).c_str());
    fprintf(stderr, "\t\tpFill->Create(refSpace);\n");
    fprintf(stderr, "\t\tgAppColours.Add(pFill);\n");
    fprintf(stderr, "\t}\n");
}

void CGradientFill::Save(CParameterBlock* pBlock)
{
    pBlock->AddParameter(szType, int(kTypeGradient));
    m_Code.Save(pBlock);
    pBlock->AddParameter(szName, m_strName.c_str());
    pBlock->AddParameter(szEditable, m_fEditable);
    for (CGradComponent* pStop : m_Stops)
    {
        CParameterBlock stop;
        pStop->Save(&stop);
        pBlock->AddParameter(szGradientComponent, &stop);
    }
}

bool CGradientFill::Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace)
{
    Clear();
    bool fResult = m_Code.Load(pBlock);
    fResult &= pBlock->FindParameter(szName, &m_strName, "");
    fResult &= pBlock->FindParameter(szEditable, &m_fEditable, true);

    CParameterBlock* pStopBlock = nullptr;
    CParameterBlock::iterator position;
    bool fMore = fResult && pBlock->FindFirstParameter(szGradientComponent, &pStopBlock, &position);
    while (fMore)
    {
        auto* pStop = new CGradComponent(0.0f, kNoCode);
        // The last stop alone decides the result; one that failed before it leaves no mark.
        fResult = pStop->Load(pStopBlock, pSpace);
        if (fResult)
            Insert(pStop);
        else
            delete pStop;
        fMore = pBlock->FindNextParameter(szGradientComponent, &pStopBlock, &position);
    }
    Create(pSpace);
    return fResult;
}

CGradientFill& CGradientFill::operator=(CGradientFill& other)
{
    Clear(); // first, so that a fill assigned to itself ends without stops
    m_strName = other.m_strName;
    m_Code = other.m_Code;
    m_fEditable = other.m_fEditable;
    for (CGradComponent* pSource : other.m_Stops)
    {
        auto* pStop = new CGradComponent(pSource->m_fPosition, kNoCode);
        pStop->CComponentColour::operator=(*pSource);
        Insert(pStop);
    }
    return *this;
}
