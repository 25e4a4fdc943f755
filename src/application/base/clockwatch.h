// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

class QSocketNotifier;

/**
 * Tells when the device's clock was set, or went on while the device slept: timers, which count the time that
 * the device was awake, do not notice either. The kernel reports it; nothing is polled.
 *
 * There is one a process, below the application object. Main thread only.
 */
class ClockWatch : public QObject
{
    Q_OBJECT

public:
    static ClockWatch &instance();
    ~ClockWatch() override;

Q_SIGNALS:
    void jumped();

private:
    explicit ClockWatch(QObject *parent);

    void arm() const;
    void onReadable();

    int mDescriptor = -1;
    QSocketNotifier *mNotifier = nullptr;
};
