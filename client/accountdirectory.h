// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <Accounts/Manager>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>

/** What the user tells about a new account. */
struct NewAccount
{
    QString name;
    QString emailAddress;
    QString userName;
    QString domain;
    QString server;
    int port = 0;
    bool secure = true;
    bool acceptAllCertificates = false;
    QString protocolVersion;
    QString folderPolicy;
    int pastTime = 0;
    quint32 credentialsId = 0;
    /** Of "mail", "calendar" and "contacts". */
    QStringList services;
};

/**
 * The engine's accounts in the account store: finds, describes, adds, switches and removes them. On the
 * stack of a command; needs a session bus, without which usable() is false.
 */
class AccountDirectory
{
public:
    AccountDirectory();

    /** False, after an error was printed, if the account store does not work. */
    bool usable() const;

    /** What an account can synchronise, by the names that the command line uses. */
    static QStringList serviceNames();

    QList<EasAccountId> accounts() const;
    /** By number or display name; an empty text means the only account. 0, after an error, if none is meant.
     */
    EasAccountId find(const QString &account) const;
    QJsonObject describe(EasAccountId id) const;

    /** The new account's identifier, or 0 after an error was printed. */
    EasAccountId add(const NewAccount &account);
    bool setEnabled(EasAccountId id, bool enabled);
    bool remove(EasAccountId id);

    quint32 credentialsId(EasAccountId id) const;
    QString userName(EasAccountId id) const;
    QString emailAddress(EasAccountId id) const;
    /** Tells the engine that there are new credentials, and lifts the block of refused ones. */
    bool credentialsChanged(EasAccountId id, quint32 credentialsId);

private:
    std::unique_ptr<Accounts::Account> load(EasAccountId id) const;
    QStringList enabledServices(Accounts::Account &account) const;
    static Accounts::Service mailService(const Accounts::Account &account);
    static bool store(Accounts::Account &account);

    std::shared_ptr<Accounts::Manager> mManager;
};
