// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/**
 * Turns SIGTERM and SIGINT into a Qt signal. Create it before any other thread: threads inherit the mask that
 * keeps the two from ending the process. Restores nothing; it lives as long as the process.
 */
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    QuitSignals();
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested();

private:
    void onReadable();

    int mDescriptor = -1;
    std::unique_ptr<QSocketNotifier> mNotifier;
};
