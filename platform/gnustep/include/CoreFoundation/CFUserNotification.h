#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

enum : CFOptionFlags
{
    kCFUserNotificationStopAlertLevel = 0,
    kCFUserNotificationNoteAlertLevel = 1,
    kCFUserNotificationCautionAlertLevel = 2,
    kCFUserNotificationPlainAlertLevel = 3,
};

enum : CFOptionFlags
{
    kCFUserNotificationDefaultResponse = 0,
    kCFUserNotificationAlternateResponse = 1,
    kCFUserNotificationOtherResponse = 2,
    kCFUserNotificationCancelResponse = 3,
};

extern "C"
{
    /// Shows an alert and waits for the user. The target is Platform::AppKit. Main thread; the
    /// alert is a modal panel of the application, whose timers and events go on meanwhile.
    ///
    /// `timeout` in seconds, after which the alert goes with kCFUserNotificationCancelResponse; 0
    /// is none. Of the flags the alert level counts. Icon, sound and localisation are not looked
    /// at. A null header or message is an empty one, a null default title is "OK", and a button
    /// without a title otherwise is left out. `response`, unless null, tells the button.
    ///
    /// 0, or -1 with nothing shown and no response when the process has no application object or
    /// this is not the main thread.
    SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags,
                                          CFURLRef iconURL, CFURLRef soundURL,
                                          CFURLRef localizationURL, CFStringRef header,
                                          CFStringRef message, CFStringRef defaultButtonTitle,
                                          CFStringRef alternateButtonTitle,
                                          CFStringRef otherButtonTitle, CFOptionFlags* response);
}
