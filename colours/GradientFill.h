// A palette entry that is painted as a gradient: ordered stops and the platform's gradient made
// from them. Main thread only.
#pragma once

#include "colours/ComponentColour.h"

#include <set>

/// One stop of a gradient.
class CGradComponent : public CComponentColour
{
public:
    /// All numbers 0, no platform colours, editable, no name.
    CGradComponent(float fPosition, CComponentCode code);

    /// A stop without code or name. The position is narrowed to float.
    CGradComponent(double dPosition, double dRed, double dGreen, double dBlue, double dAlpha,
                   CGColorSpaceRef pSpace, bool fEditable);

    /// Adds the float "Position" and the nested block "Color".
    void Save(CParameterBlock* pBlock) override;

    /// False when "Position", "Color" or a value of the colour is missing.
    bool Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace) override;

    using CComponentColour::operator=;
    CGradComponent& operator=(CGradComponent& other);

    float m_fPosition; ///< place in the gradient, nominally 0 to 1
};

/// Orders stops by position. Two stops of one position are equal, so that a set keeps the first.
struct CCompareGradPositions
{
    bool operator()(const CGradComponent* a, const CGradComponent* b) const
    {
        return a->m_fPosition < b->m_fPosition;
    }
};

/// The numbers, m_refColor and m_pNSColor of the base class stay 0 and null.
class CGradientFill : public CComponentColour
{
public:
    explicit CGradientFill(CComponentCode code);
    CGradientFill(CComponentCode code, const char* pName, bool fEditable); ///< pName not null
    ~CGradientFill() override;

    /// Releases the gradient and deletes every stop.
    void Clear();

    /// Adds a stop. Red, green and blue are multiplied; all four numbers are clamped to 1 from
    /// above. A stop whose position is taken, compared as floats, is dropped without report. The
    /// gradient stays as it was until Create.
    void AddColor(double dPosition, double dRed, double dGreen, double dBlue, double dAlpha,
                  CGColorSpaceRef pSpace, bool fEditable, double dMultiplier = 1.0);

    /// Deletes a stop of this fill; does nothing for any other. The gradient stays until Create.
    void DeleteColor(CGradComponent* pStop);

    /// Makes the gradient of the stops as they are now. Needed before painting.
    void Create(CGColorSpaceRef pSpace);

    /// Prints the calls that rebuild this fill on the standard error stream, for a designer to
    /// paste into the default palette; XXXX stands where the code belongs.
    void DumpCode();

    /// Adds "Type", "Code", "Name", "Edit" and a nested block "GradColor" for each stop.
    void Save(CParameterBlock* pBlock) override;

    /// Clears first and always ends in Create. The result is that of the last stop alone: stops
    /// that fail before it are left out and leave no mark.
    bool Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace) override;

    /// Copies name, code, flag and stops. The target has no gradient until Create. Assigning
    /// through a reference to the base class copies the base class's data alone.
    using CComponentColour::operator=;
    CGradientFill& operator=(CGradientFill& other);

    std::set<CGradComponent*, CCompareGradPositions> m_Stops; ///< owned
    CGGradientRef m_refGradient = nullptr;                    ///< owned; null until Create

private:
    /// Takes the stop over; deletes it when its position is taken.
    void Insert(CGradComponent* pStop);
};
