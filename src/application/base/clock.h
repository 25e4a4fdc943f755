// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QTimeZone>

/**
 * Time as the engine sees it: the current time, the device's zone and the length of every timer.
 *
 * All code that starts a timer passes its interval through timerInterval(), and all code that asks for the
 * time asks here, so that another clock can be put in (a test shortens a delay of minutes, or sets the date).
 * There is one clock a process. Main thread only.
 */
class Clock
{
public:
    virtual ~Clock() = default;

    static Clock &instance();

    /** Puts another clock in; the caller keeps ownership. Null brings the system's clock back. */
    static void setInstance(Clock *clock);

    virtual QDateTime currentDateTimeUtc() const;
    virtual QTimeZone timeZone() const;

    /** What a timer is for, for clocks that shorten some of them. */
    enum class Timer {
        Other,
        Resend, ///< before the next attempt of a request
        OptionsTimeout, ///< until a server has to have answered OPTIONS
        AccountsCheck, ///< before the engine ends for want of an enabled account
        ProcessEnd, ///< from the end of the engine to that of its process
        DatabaseRelease, ///< from the last use of the mapping to its closing
        WipeAcknowledgement, ///< until the acknowledgement of an order to wipe has to have ended
        WipeStart, ///< from there, or from the account's appearance, to the wipe
        WipeRetry, ///< before the next attempt of a wipe that could not be completed
        SignOnAnswer, ///< until the sign-on service has to have answered
        Answer, ///< until a command that waits for news gives its server up
        PushPause, ///< before the next Ping
        PushRestart, ///< from a stop of push to the sync that starts it again
        LocalChanges ///< from the last local change to the sync that uploads it
    };

    /** What a timer of this nominal length, in milliseconds, is really started with. */
    virtual int timerInterval(int milliseconds, Timer timer = Timer::Other) const;
};
