#import "apps/palette/PaletteTable.h"

#include "apps/palette/PaletteCodes.h"
#import "apps/palette/SheetParts.h"
#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Tarvane
{
namespace
{

constexpr CGFloat kRowHeight = 56;
constexpr CGFloat kHeaderHeight = 42;
constexpr CGFloat kTextWidth = 222;
constexpr CGFloat kSwatchWidth = 44;
constexpr CGFloat kSwatchHeight = 44;
constexpr CGFloat kSwatchGap = 6;
constexpr CGFloat kColumnGap = 18;
constexpr CGFloat kColumnWidth = 2 * kSwatchWidth + kSwatchGap + kColumnGap;

// What an X window has room for; a palette of use has a dozen.
constexpr size_t kShownRows = 400;

// Shown stops; a longer list ends in the number of the others.
constexpr size_t kShownStops = 3;

struct Column
{
    FillDirection direction;
    const char* szName;
};

constexpr Column kColumns[] = {
    {kFillTopToBottom, "Top to bottom 1"},
    {kFillLeftToRight, "Left to right 3"},
    {kFillRightToLeft, "Right to left 4"},
    {kFillDiagonal, "Diagonal 10"},
};

constexpr CGFloat kTableWidth = kTextWidth + std::size(kColumns) * kColumnWidth - kColumnGap;

int Byte(double dNumber) { return int(std::lround(std::clamp(dNumber, 0.0, 1.0) * 255)); }

// "#363636", and the alpha where it is not 1.
std::string ColourText(const CComponentColour& colour)
{
    char text[40];
    const int nLength = std::snprintf(text, sizeof text, "#%02X%02X%02X", Byte(colour.m_dRed),
                                      Byte(colour.m_dGreen), Byte(colour.m_dBlue));
    if (colour.m_dAlpha != 1.0)
    {
        std::snprintf(text + nLength, sizeof text - nLength, " %.0f%%",
                      std::clamp(colour.m_dAlpha, -9.0, 9.0) * 100);
    }
    return text;
}

std::string StopsText(const CGradientFill& fill)
{
    std::string strText;
    size_t nShown = 0;
    for (const CGradComponent* pStop : fill.m_Stops)
    {
        if (++nShown > kShownStops)
        {
            return strText + " and " + std::to_string(fill.m_Stops.size() - kShownStops) + " more";
        }
        char position[32];
        std::snprintf(position, sizeof position, "%.4g ", double(pStop->m_fPosition));
        strText += (nShown == 1 ? "" : "   ") + (position + ColourText(*pStop));
    }
    return strText.empty() ? "no stops" : strText;
}

std::string CodeText(CComponentCode code)
{
    const std::string strName = NameOfCode(code);
    return (strName.empty() ? "" : strName + "   ") + NumbersOfCode(code);
}

void AddSwatches(NSView* table, CComponentCode code, CGFloat y)
{
    CGFloat x = kTextWidth;
    for (const Column& column : kColumns)
    {
        const NSRect plain = NSMakeRect(x, y, kSwatchWidth, kSwatchHeight);
        const NSRect round = NSOffsetRect(plain, kSwatchWidth + kSwatchGap, 0);
        [table addSubview:[[[Swatch alloc] initWithFrame:plain
                                                    code:code
                                               direction:column.direction
                                                  radius:0] autorelease]];
        [table addSubview:[[[Swatch alloc] initWithFrame:round
                                                    code:code
                                               direction:column.direction
                                                  radius:[GraphicUtils GetButtonCornerRadius]]
                              autorelease]];
        x += kColumnWidth;
    }
}

void AddRow(NSView* table, const CComponentColour& entry, CGFloat y)
{
    const auto* pFill = dynamic_cast<const CGradientFill*>(&entry);
    const std::string strStops =
        pFill != nullptr ? StopsText(*pFill) : "flat  " + ColourText(entry);
    const CGFloat dWidth = kTextWidth - 8;
    [table addSubview:MakeWords(CWords::Strong, ToNSString(entry.m_strName),
                                NSMakeRect(0, y, dWidth, 18))];
    [table addSubview:MakeWords(CWords::Detail, ToNSString(CodeText(entry.m_Code)),
                                NSMakeRect(0, y + 17, dWidth, 15))];
    [table addSubview:MakeWords(CWords::Detail, ToNSString(strStops),
                                NSMakeRect(0, y + 31, dWidth, 15))];
    AddSwatches(table, entry.m_Code, y);
}

void AddHeader(NSView* table)
{
    CGFloat x = kTextWidth;
    for (const Column& column : kColumns)
    {
        [table addSubview:MakeWords(CWords::Section, ToNSString(column.szName),
                                    NSMakeRect(x - 2, 0, kColumnWidth - 6, 18))];
        [table addSubview:MakeWords(CWords::Detail, @"plain",
                                    NSMakeRect(x - 2, 18, kSwatchWidth, 15))];
        [table addSubview:MakeWords(CWords::Detail, @"rounded",
                                    NSMakeRect(x + kSwatchWidth + kSwatchGap - 2, 18,
                                               kSwatchWidth + 8, 15))];
        x += kColumnWidth;
    }
}

} // namespace

NSView* MakePaletteTable()
{
    const size_t nEntries = gAppColours.m_Map.size();
    const size_t nRows = std::min(nEntries, kShownRows);
    const CGFloat dRest = nRows < nEntries ? 20 : 0;
    SheetGroup* table = [[[SheetGroup alloc]
        initWithFrame:NSMakeRect(0, 0, kTableWidth, kHeaderHeight + nRows * kRowHeight + dRest)]
        autorelease];
    AddHeader(table);
    CGFloat y = kHeaderHeight;
    // The lowest code first, as a designer counts.
    auto entry = gAppColours.m_Map.rbegin();
    for (size_t nRow = 0; nRow < nRows; ++nRow, ++entry)
    {
        AddRow(table, *entry->second, y);
        y += kRowHeight;
    }
    if (nRows < nEntries)
    {
        const std::string strRest = "and " + std::to_string(nEntries - nRows) + " more entries";
        [table addSubview:MakeWords(CWords::Detail, ToNSString(strRest),
                                    NSMakeRect(0, y, kTextWidth, 15))];
    }
    return table;
}

} // namespace Tarvane
