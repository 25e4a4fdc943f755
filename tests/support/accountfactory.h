// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

namespace Accounts {
class Account;
class Manager;
} // namespace Accounts

/** What a new account is made with. */
struct AccountOptions
{
    QString userName = QStringLiteral("alice");
    QString password = QStringLiteral("s3cret");
    QString emailAddress = QStringLiteral("alice@example.com");
    QString domain;
    QString host = QStringLiteral("127.0.0.1");
    int port = 0;
    bool secure = false;
    bool acceptAllCertificates = false;
    QString preferredVersion;
    /** Which folders are synchronised; all of them. */
    QString folderSyncPolicy = QStringLiteral("ignore-flags");
    bool enabled = true;
    bool mailEnabled = true;
    bool calendarsEnabled = false;
    bool contactsEnabled = false;
    /** Without a password no identity is stored. */
    bool withIdentity = true;
};

/**
 * The other program that makes and edits accounts: real records in the account store, real identities in the
 * sign-on service. Needs PrivateBus::ensure() before. Accounts that still exist at the end are removed.
 */
class AccountFactory
{
public:
    AccountFactory();
    ~AccountFactory();
    Q_DISABLE_COPY(AccountFactory)

    /** Zero if it failed. */
    EasAccountId create(const AccountOptions &options = AccountOptions());
    bool remove(EasAccountId id);

    bool setEnabled(EasAccountId id, bool enabled);
    bool setServiceEnabled(EasAccountId id, const QString &serviceName, bool enabled);

    /** Keys of a service, or of the account's global part with an empty service name. */
    bool setValue(EasAccountId id, const QString &serviceName, const QString &key, const QVariant &value);
    /** As another program would read it now. */
    QVariant value(EasAccountId id, const QString &serviceName, const QString &key) const;

    /** What a settings program does when the user enters a new password: the secret first, then the record.
     */
    bool changePassword(EasAccountId id, const QString &password);

    /** Stores credentials in the sign-on service; zero if it failed. */
    static quint32 storeIdentity(const QString &userName, const QString &secret, quint32 existing = 0);
    static bool identityExists(quint32 id);
    /** The stored secret, or a null text. */
    static QString storedSecret(quint32 id);

    static QString mailService() { return QStringLiteral("fenneleas-email"); }
    static QString calendarService() { return QStringLiteral("fenneleas-calendars"); }
    static QString contactsService() { return QStringLiteral("fenneleas-contacts"); }

private:
    Accounts::Account *select(EasAccountId id, const QString &serviceName) const;
    void fillGlobalPart(Accounts::Account *account, const AccountOptions &options) const;
    void fillServices(Accounts::Account *account, const AccountOptions &options) const;

    std::unique_ptr<Accounts::Manager> mManager;
    QList<EasAccountId> mCreated;
};
