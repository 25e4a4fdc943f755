// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

namespace Accounts {
class Manager;
}

/**
 * Everything that a device has of one account, place by place: the rows of each table of the mapping and of
 * the stores, files, identities, the account's record.
 *
 * What leads to a row (the numbers of folders, collections, events) is read when the object is made and
 * remembered, so that rows which have lost their parent are found all the same. Two listings of an account
 * that nothing has happened to are equal, byte for byte.
 */
class DeviceTraces
{
public:
    /** What was found in each place; a place where nothing is has an empty list. */
    using Places = QMap<QString, QStringList>;

    explicit DeviceTraces(EasAccountId accountId);

    Places find() const;

    /** The places that have something, a line each; empty if there is none such. */
    static QString listing(const Places &places);
    /** What differs, a line each. */
    static QString difference(const Places &found, const Places &wanted);
    /** The names of the places that are empty. */
    static QStringList emptyPlaces(const Places &places);

private:
    /** The rows of a query of one store. */
    struct Query
    {
        QString place;
        QString file;
        QString sql;
    };

    void rememberMail();
    void rememberCalendar();
    void rememberContacts();
    void rememberIdentities();
    void addQuery(const char *store, const QString &file, const char *table, const QString &condition);
    static QStringList rows(const Query &query);
    QStringList values(const QString &file, const QString &sql) const;
    QStringList record() const;
    QStringList identities() const;

    QString mAccount;
    EasAccountId mAccountId;
    std::shared_ptr<Accounts::Manager> mStore;
    QVector<Query> mQueries;
    QStringList mCalendarFiles;
    QVector<quint32> mIdentities;
};
