// The palette in a state of a test's own, and the files that hold one.
#pragma once

#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "utils/FileIO/FileName.h"
#include "utils/ParameterBlock.h"

#import <Foundation/Foundation.h>

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace TarvaneTest
{

inline std::string FileText(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// Each test begins with the default palette and an empty folder.
class PaletteTest : public testing::Test
{
  protected:
    PaletteTest() : m_pool([[NSAutoreleasePool alloc] init]) { AppCreateDefaultColoursDesigner(); }
    ~PaletteTest() override
    {
        gAppColours.Clear();
        CGColorSpaceRelease(m_space);
        [m_pool drain];
    }

    CComponentColour* MakeFlat(CComponentCode code, const char* szName, double dRed)
    {
        return new CComponentColour(code, szName, dRed, 0, 0, 1, m_space, true);
    }

    CGradientFill* MakeGradient(CComponentCode code, const char* szName, int nStops)
    {
        auto* pFill = new CGradientFill(code, szName, true);
        for (int n = 0; n < nStops; ++n)
        {
            pFill->AddColor(n / 10.0, n / 10.0, 0, 0, 1, m_space, true);
        }
        pFill->Create(m_space);
        return pFill;
    }

    /// Writes a session with these entries, each as its own Save has it and `fnChange` leaves it.
    template <class Change>
    std::filesystem::path WriteEntries(std::initializer_list<CComponentColour*> entries,
                                       Change fnChange)
    {
        CParameterBlock list;
        for (CComponentColour* pEntry : entries)
        {
            CParameterBlock block;
            pEntry->Save(&block);
            fnChange(*pEntry, block);
            list.AddParameter("Comp", &block);
            delete pEntry;
        }
        return WriteBlock("Comps", list);
    }

    std::filesystem::path WriteEntries(std::initializer_list<CComponentColour*> entries)
    {
        return WriteEntries(entries, [](CComponentColour&, CParameterBlock&) {});
    }

    std::filesystem::path WriteBlock(const char* szName, CParameterBlock& block)
    {
        CParameterBlock session;
        session.AddParameter(szName, &block);
        const std::filesystem::path path = m_folder / "written.session";
        CFileName name(path.c_str());
        EXPECT_EQ(session.SaveBinarySession(&name), 0);
        return path;
    }

    NSAutoreleasePool* m_pool;
    CGColorSpaceRef m_space = CGColorSpaceCreateDeviceRGB();
    CTemporaryFolder m_folder;
};

} // namespace TarvaneTest
