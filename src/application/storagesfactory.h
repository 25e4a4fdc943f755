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
class StorageCreator;

/** Creates the bindings to the platform's stores, so that the engine knows their interfaces alone. */
class StoragesFactory
{
public:
    StoragesFactory() = delete;

    /** The creator of the stores that are bound to the platform; there is one a process. */
    static const StorageCreator &storageCreator();
    static AccountStorage *createAccountStorage(QObject *parent);
    static MailStorage *createMailStorage(EasAccount *account, QObject *parent);
    static CalendarStorage *createCalendarStorage(EasAccount &account, QObject *parent);
    static ContactStorage *createContactStorage(EasAccount &account, QObject *parent);

    /** Removes what the stores keep of these accounts, which the platform has no more. */
    static bool cleanUpDeletedAccounts(const QList<EasAccountId> &accounts);
    /** Removes what the stores keep of these accounts, which stay and start anew. */
    static bool cleanUpAccounts(const QList<EasAccountId> &accounts);
};
