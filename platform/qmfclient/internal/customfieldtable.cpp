// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/customfieldtable.h"

#include "internal/mailvaluedata.h"

CustomFieldTable::CustomFieldTable(MailDatabase &database, const QString &table)
    : mDatabase(database)
    , mLoad(QStringLiteral("SELECT name, value FROM %1 WHERE owner = ?").arg(table))
    , mInsert(QStringLiteral("INSERT INTO %1 (owner, name, value) VALUES (?, ?, ?)").arg(table))
    , mRemove(QStringLiteral("DELETE FROM %1 WHERE owner = ?").arg(table))
{
}

QMap<QString, QString> CustomFieldTable::load(quint64 owner)
{
    QMap<QString, QString> fields;
    mDatabase.select(mLoad, { owner },
        [&fields](const QSqlQuery &row) { fields.insert(row.value(0).toString(), row.value(1).toString()); });
    return fields;
}

bool CustomFieldTable::save(quint64 owner, const MailCustomFields &fields, bool newOwner)
{
    if (!newOwner && !fields.touched)
        return true;
    if (!newOwner && !remove(owner))
        return false;
    for (auto it = fields.values.cbegin(); it != fields.values.cend(); ++it) {
        if (!mDatabase.run(mInsert, { owner, it.key().isNull() ? QLatin1String("") : it.key(), it.value() }))
            return false;
    }
    return true;
}

bool CustomFieldTable::remove(quint64 owner)
{
    return mDatabase.run(mRemove, { owner });
}
