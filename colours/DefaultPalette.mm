#include "colours/ComponentsColors.h"

#include "colours/GradientFill.h"

#include <initializer_list>

namespace
{
struct Stop
{
    double dPosition, dRed, dGreen, dBlue, dAlpha;
};

constexpr Stop Grey(double dPosition, double dLevel)
{
    return {dPosition, dLevel, dLevel, dLevel, 1.0};
}

class PaletteMaker
{
  public:
    ~PaletteMaker() { CGColorSpaceRelease(m_refSpace); }

    void AddGradient(CComponentCode code, const char* pName, std::initializer_list<Stop> stops)
    {
        auto* pFill = new CGradientFill(code, pName, true);
        for (const Stop& stop : stops)
            pFill->AddColor(stop.dPosition, stop.dRed, stop.dGreen, stop.dBlue, stop.dAlpha,
                            m_refSpace, true);
        pFill->Create(m_refSpace);
        gAppColours.Add(pFill);
    }

    void AddColour(CComponentCode code, const char* pName, double dRed, double dGreen, double dBlue)
    {
        gAppColours.Add(
            new CComponentColour(code, pName, dRed, dGreen, dBlue, 1.0, m_refSpace, true));
    }

  private:
    CGColorSpaceRef m_refSpace = CGColorSpaceCreateDeviceRGB();
};

void AddTrackInfoBackground(PaletteMaker& maker)
{
    maker.AddGradient(
        ccTrackInfoBackground, "Track Info Background",
        {{0.0, 0.098916, 0.098916, 0.098916, 1.0}, {1.0, 0.23685, 0.236851, 0.236849, 1.0}});
}
} // namespace

void AppCreateDefaultColoursDesigner()
{
    gAppColours.Clear();
    PaletteMaker maker;
    AddTrackInfoBackground(maker);
    maker.AddColour(ccLabelText, "Label text", 0.6980392156862745, 0.6980392156862745,
                    0.6980392156862745);
    maker.AddColour(ccSelectedTextBackground, "Selected text background", 0.29411764705882354,
                    0.34901960784313724, 0.4470588235294118);
    // A second time on purpose: it replaces the first.
    AddTrackInfoBackground(maker);
    maker.AddGradient(ccButtonFace, "Button face", {Grey(0.0, 0.21176470588235294)});
    maker.AddGradient(
        ccButtonFaceActive, "Button face Active",
        {{0.807339, 0.34072, 0.340677, 0.340736, 0.82}, {1.0, 0.266802, 0.266804, 0.266802, 1.0}});
    maker.AddGradient(ccButtonBorder, "Button border", {Grey(0.0, 0.447059), Grey(1.0, 0.156863)});
    maker.AddGradient(ccButtonBorderActive, "Button border Active",
                      {{0.0, 0.213698, 0.213699, 0.213697, 1.0}});
    maker.AddColour(ccControlText, "Control text", 0.7529411764705882, 0.7529411764705882,
                    0.7529411764705882);
    maker.AddGradient(ccTransportBtnFaceUp, "Transport button up face",
                      {Grey(0.0, 0.21176470588235294)});
    maker.AddGradient(ccTransportBtnBorderUp, "Transport button up border",
                      {Grey(0.0, 0.321569), Grey(0.995413, 0.482353)});
    maker.AddGradient(ccTransportBtnFaceDown, "Transport button down face",
                      {Grey(0.0, 0.21176470588235294)});
    maker.AddGradient(ccTransportBtnBorderDown, "Transport button down border",
                      {Grey(0.0, 0.21176470588235294)});
}
