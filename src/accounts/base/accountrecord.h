// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QPair>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QVector>

namespace Accounts {
class Account;
}

/** Which part of an account record a key stands in. */
struct RecordScope
{
    enum Kind { Global, FirstOfType, Named };

    static RecordScope global();
    static RecordScope firstOfType(const QString &serviceType);
    static RecordScope named(const QString &serviceType, const QString &serviceName);

    Kind kind = Global;
    QString serviceType;
    QString serviceName;
};

/**
 * Typed access to one record of the platform's account store.
 *
 * The record's object keeps a selected service, which all its users share: each operation here selects what
 * it needs and leaves the global part selected. A record that is gone, or that lacks the service, reads as
 * empty and refuses writes. Does not own the record. Main thread only.
 */
class AccountRecord
{
public:
    using Values = QVector<QPair<QString, QVariant>>;

    explicit AccountRecord(Accounts::Account *account);

    Accounts::Account *account() const;
    /** The account's own switch; those of its services are keys of theirs. */
    bool enabled() const;
    bool contains(const RecordScope &scope) const;
    QString serviceName(const RecordScope &scope) const;

    /** An invalid variant for a key without value. */
    QVariant value(const RecordScope &scope, const QString &key) const;
    /** Sets the keys and stores the record. */
    bool write(const RecordScope &scope, const Values &values);
    bool write(const RecordScope &scope, const QString &key, const QVariant &value);
    /** Takes back a value of a new key that could not be stored, so that the next write does not store it. */
    void discard(const RecordScope &scope, const QString &key);

private:
    /** False if the record lacks the service. */
    bool select(const RecordScope &scope) const;

    QPointer<Accounts::Account> mAccount;
};
