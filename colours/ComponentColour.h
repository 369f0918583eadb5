// The code by which everything names a colour, and one flat colour of the palette.
//
// Controls store codes and ask the palette (ComponentsColors.h) for the colour when they draw.
// Main thread only.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <string>

@class NSColor;
class CParameterBlock;

/// Names a colour. CComponentCode(0, 0) is the empty code: no colour.
class CComponentCode
{
  public:
    constexpr CComponentCode() = default; ///< the empty code

    constexpr CComponentCode(int nModule, int nComponent)
        : m_nModule(nModule), m_nComponent(nComponent)
    {
    }

    /// The module from the high 32 bits of the key, the component from the low.
    constexpr explicit CComponentCode(long long nKey)
        : m_nModule(int(nKey >> 32)), m_nComponent(int(unsigned(nKey)))
    {
    }

    /// The number under which the palette files the code.
    constexpr long long Key() const
    {
        return (long long)((unsigned long long)(unsigned)m_nModule << 32 | (unsigned)m_nComponent);
    }

    constexpr bool Empty() const { return m_nModule == 0 && m_nComponent == 0; }

    /// Adds the nested block "Code" with the integers "Mod" and "CompID".
    void Save(CParameterBlock* pBlock) const;

    /// False when "Code" or a number in it is missing. Without "Code" the code stays as it was; a
    /// missing number becomes 0.
    bool Load(CParameterBlock* pBlock);

    int m_nModule = 0;
    int m_nComponent = 0;
};

/// A named colour: four numbers, nominally 0 to 1 and never clamped, and the platform's colours
/// made from them.
class CComponentColour
{
  public:
    /// All numbers 0, no platform colours, editable, no name.
    explicit CComponentColour(CComponentCode code);

    /// pName must not be null. The colour is created in pSpace, which stays the caller's.
    CComponentColour(CComponentCode code, const char* pName, double dRed, double dGreen,
                     double dBlue, double dAlpha, CGColorSpaceRef pSpace, bool fEditable);

    CComponentColour(const CComponentColour&) = delete;

    virtual ~CComponentColour();

    /// Adds "Type", "Code", "R", "G", "B", "A", "Name" and "Edit".
    virtual void Save(CParameterBlock* pBlock);

    /// Takes every value that is there and the default for every other; false when one is missing.
    /// m_refColor is then null, while m_pNSColor is made in either case.
    virtual bool Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace);

    /// Copies flag, code, name and numbers; the platform colours are made anew in device RGB.
    virtual CComponentColour& operator=(CComponentColour& other);

    /// Stores the numbers and makes both platform colours anew in device RGB. On a gradient this
    /// changes nothing that is painted.
    void UpdateColour(double dRed, double dGreen, double dBlue, double dAlpha);

    /// Does nothing.
    void CopyColourArray() {}

    /// Adjacent and in this order: the component array of the platform's calls.
    CGFloat m_dRed = 0;
    CGFloat m_dGreen = 0;
    CGFloat m_dBlue = 0;
    CGFloat m_dAlpha = 0;
    CGColorRef m_refColor = nullptr; ///< owned
    NSColor* m_pNSColor = nil;       ///< owned
    bool m_fEditable = true;         ///< whether a user may change the entry
    CComponentCode m_Code;
    std::string m_strName;

    static constexpr const char* szType = "Type";
    static constexpr const char* szComponentColour = "CC";
    static constexpr const char* szRed = "R";
    static constexpr const char* szBlue = "B";
    static constexpr const char* szGreen = "G";
    static constexpr const char* szAlpha = "A";
    static constexpr const char* szComponent = "Comp";
    static constexpr const char* szComponents = "Comps";
    static constexpr const char* szName = "Name";
    static constexpr const char* szEditable = "Edit";

    /// The values of szType.
    enum
    {
        kTypeColour = 1,
        kTypeGradient = 2,
    };

  private:
    void MakeNSColor();
};
