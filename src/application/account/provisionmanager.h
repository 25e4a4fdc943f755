// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

class EasAccount;

/**
 * Judges a server's policies against what this device satisfies. Built for one account, which owns it and
 * outlives it. Main thread only.
 */
class ProvisionManager : public QObject
{
    Q_OBJECT

public:
    ProvisionManager(EasAccount *account, QObject *parent);
    ~ProvisionManager() override;

    EasAccount *account() const;

private:
    EasAccount *mAccount;
};
