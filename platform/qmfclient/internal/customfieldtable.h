// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/maildatabase.h"

#include <QMap>

struct MailCustomFields;

/** The custom fields of messages, folders or accounts, each kind in its own table. */
class CustomFieldTable
{
public:
    CustomFieldTable(MailDatabase &database, const QString &table);

    QMap<QString, QString> load(quint64 owner);
    /** Writes only what was touched, or what is there at all when the owner is new. */
    bool save(quint64 owner, const MailCustomFields &fields, bool newOwner);
    bool remove(quint64 owner);

private:
    MailDatabase &mDatabase;
    const QString mLoad;
    const QString mInsert;
    const QString mRemove;
};
