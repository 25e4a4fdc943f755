// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CalendarStorage;
class ContactStorage;
class EasAccount;
class MailStorage;
class QObject;

/**
 * Makes the stores of an account, so that an account object knows them by their interfaces alone. The
 * StoragesFactory has the one that makes the bindings to the platform. What is made belongs to the parent, or
 * to the caller without one. Main thread only.
 */
class StorageCreator
{
public:
    virtual ~StorageCreator() = default;

    virtual MailStorage *createMailStorage(EasAccount *account, QObject *parent) const = 0;
    virtual CalendarStorage *createCalendarStorage(EasAccount &account, QObject *parent) const = 0;
    virtual ContactStorage *createContactStorage(EasAccount &account, QObject *parent) const = 0;
};
