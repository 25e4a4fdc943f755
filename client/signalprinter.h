// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/output.h"

#include <QDBusMessage>
#include <QObject>

#include <memory>

class AccountWatch;

/**
 * Prints what happens as it comes, a line each: every signal of the daemon, the daemon and the accounts as
 * they come and go. On the stack of a command.
 */
class SignalPrinter : public QObject
{
    Q_OBJECT

public:
    explicit SignalPrinter(Output &output);
    ~SignalPrinter() override;

    /** False, after an error, if the bus cannot be listened to. */
    bool start();

private Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private:
    void followAccounts();
    void followDaemon();
    void print(const QString &signal, const QVariantList &values = {});

    Output &mOutput;
    std::unique_ptr<AccountWatch> mAccounts;
};
