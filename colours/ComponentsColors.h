// The palette: colours and gradients known by code.
//
// Main thread only: the table is read while drawing and rebuilt while a view is created.
#pragma once

#include "colours/ComponentColour.h"

#include <functional>
#include <map>

class CComponentsColors
{
  public:
    CComponentsColors() = default;
    CComponentsColors(const CComponentsColors&) = delete;
    CComponentsColors& operator=(const CComponentsColors&) = delete;
    ~CComponentsColors();

    /// The entry, or null.
    CComponentColour* Find(CComponentCode code);

    /// Whether the code has an entry and that entry is a gradient.
    bool IsGradient(CComponentCode code);

    /// The entry's colour, which stays the entry's; null without an entry and for a gradient.
    CGColorRef FindCGColorRef(CComponentCode code);
    NSColor* FindNSColor(CComponentCode code);

    /// The entry's red, green, blue and alpha, valid while the entry lives; null without an entry.
    /// A gradient's are 0.
    const CGFloat* FindRGBA(CComponentCode code);

    /// Does nothing for a code without an entry.
    void UpdateColour(CComponentCode code, float fRed, float fGreen, float fBlue, float fAlpha);

    /// Takes the entry over. An earlier entry of the same code is deleted, so an entry that is in
    /// the table already must not be added again.
    void Add(CComponentColour* pColour);

    /// Deletes every entry.
    void Clear();

    /// Adds the nested block "Comps" with a block "Comp" for each entry, the highest key first.
    void Save(CParameterBlock* pBlock);

    /// Adds the entries of "Comps"; those of other codes stay. False without "Comps"; otherwise the
    /// result of the last entry alone. An entry of an unknown type is left out, as one that failed.
    bool Load(CParameterBlock* pBlock, CGColorSpaceRef pSpace);

    std::map<long long, CComponentColour*, std::greater<long long>> m_Map; ///< by key; owned
};

/// The application's palette; empty until the first view is created.
extern CComponentsColors gAppColours;

/// Not zero: buttons are painted from the palette; zero: in fixed shades of grey.
extern int gnAppStyle;

/// Fills gAppColours with the default palette, in place of whatever it holds.
void AppCreateDefaultColoursDesigner();

inline constexpr CComponentCode ccNull(0, -1); ///< has no entry, and is not the empty code
inline constexpr CComponentCode ccTrackInfoBackground(0, 302);
inline constexpr CComponentCode ccControlText(0, 307);
inline constexpr CComponentCode ccLabelText(0, 308);
inline constexpr CComponentCode ccButtonBorder(0, 311);
inline constexpr CComponentCode ccButtonFace(0, 312);
inline constexpr CComponentCode ccButtonBorderActive(0, 313);
inline constexpr CComponentCode ccButtonFaceActive(0, 314);
inline constexpr CComponentCode ccSelectedTextBackground(0, 315);
inline constexpr CComponentCode ccTransportBtnFaceUp(0, 320);
inline constexpr CComponentCode ccTransportBtnBorderUp(0, 321);
inline constexpr CComponentCode ccTransportBtnFaceDown(0, 322);
inline constexpr CComponentCode ccTransportBtnBorderDown(0, 323);
