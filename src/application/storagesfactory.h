// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QList>

class AccountStorage;
class CalendarStorage;
class ContactStorage;
class EasAccount;
class MailStorage;
class QObject;

/** Creates the bindings to the platform's stores, so that the engine knows their interfaces alone. */
class StoragesFactory
{
public:
    StoragesFactory() = delete;

    static AccountStorage *createAccountStorage(QObject *parent);
    static MailStorage *createMailStorage(EasAccount *account, QObject *parent);
    static CalendarStorage *createCalendarStorage(EasAccount &account, QObject *parent);
    static ContactStorage *createContactStorage(EasAccount &account, QObject *parent);

    /** Removes what the stores keep of accounts that are not in the list. */
    static bool cleanUpDeletedAccounts(const QList<EasAccountId> &knownAccounts);
    /** Removes what the stores keep of these accounts. */
    static bool cleanUpAccounts(const QList<EasAccountId> &accounts);
};
