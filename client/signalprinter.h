// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/output.h"

#include <QDBusMessage>
#include <QObject>

/** Prints signals as they come, a line each: every one of the daemon, and what it is given. On the stack of
 * a command. */
class SignalPrinter : public QObject
{
    Q_OBJECT

public:
    explicit SignalPrinter(Output &output);

    /** False, after an error, if the bus cannot be listened to. */
    bool start();
    void print(const QString &signal, const QVariantList &values);

private Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private:
    Output &mOutput;
};
