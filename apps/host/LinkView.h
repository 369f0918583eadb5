// The plug-in's view in the host's hands: loaded from its bundle, shown in a window, read and used
// as a person would.
#pragma once

#include "apps/host/CaptureStory.h"

#import <AppKit/AppKit.h>

#include <AudioUnit/AudioUnit.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Tarvane
{

/// Main thread. The window is owned; the plug-in must outlive this object.
class CLinkView
{
  public:
    /// Throws CUsageError when the bundle cannot be loaded, its principal class is no view factory,
    /// or the factory makes no view. The view asks the server for its tracks before this returns.
    CLinkView(const std::filesystem::path& bundle, AudioUnit pUnit);
    ~CLinkView();
    CLinkView(const CLinkView&) = delete;
    CLinkView& operator=(const CLinkView&) = delete;

    Class ViewClass() const { return [m_view class]; }
    NSWindow* Window() const { return m_window; }

    ViewWords Words() const;
    std::vector<std::string> Tracks() const;
    int SelectedTrack() const;

    /// As a click on the capture toggle. False when the view has none.
    bool PressToggle();
    /// Asks the plug-in to arm: as a hand would, or, where the view has no toggle, by itself.
    void Arm(AudioUnit pUnit);
    /// As a choice in the track menu. False when the menu has no such item.
    bool ChooseTrack(int nTrack);
    /// Opens the track menu, which the view fills as it opens, and closes it without a choice.
    /// False when the view has none.
    bool OpenMenu();

    /// Behind the window's title, for what the view has no words for; empty for the title alone.
    /// Text that is UTF-8.
    void ShowWord(const std::string& strWord);

    /// What the window's content looks like now, as PNG. Throws std::runtime_error when the picture
    /// cannot be taken.
    std::string Picture();

  private:
    id Part(NSString* strName) const;
    std::string Text(NSString* strName) const;
    NSPopUpButton* Menu() const;

    NSView* m_view = nil;
    NSWindow* m_window = nil;
};

} // namespace Tarvane
