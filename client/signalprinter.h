// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/output.h"

#include <QDBusMessage>
#include <QObject>

/** Prints every signal of the daemon as it comes, a line each. On the stack of a command. */
class SignalPrinter : public QObject
{
    Q_OBJECT

public:
    explicit SignalPrinter(Output &output);

    /** False, after an error, if the bus cannot be listened to. */
    bool start();

private Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private:
    Output &mOutput;
};
