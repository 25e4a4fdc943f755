// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/accountdirectory.h"

#include <QObject>

/** Tells of the engine's accounts that come and go in the account store. On the stack of a command. */
class AccountWatch : public QObject
{
    Q_OBJECT

public:
    AccountWatch();

Q_SIGNALS:
    void added(EasAccountId id);
    void removed(EasAccountId id);

private:
    void compare();

    AccountDirectory mDirectory;
    QList<EasAccountId> mKnown;
};
