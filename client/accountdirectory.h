// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <Accounts/Manager>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

struct AccountSettings;

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

    QList<EasAccountId> accounts() const;
    /**
     * By number, name or mail address, or by what stands before the @ of one; an empty text means the only
     * account. Another exit status than success tells of an error.
     */
    int find(const QString &account, EasAccountId *id) const;
    QJsonObject describe(EasAccountId id) const;
    bool isEnabled(EasAccountId id) const;
    /** Whether the engine does nothing for it until its password is entered anew. */
    bool isBlocked(EasAccountId id) const;
    /** How far the wipe is that its server has ordered. */
    enum class Wipe { None, Ordered, WaitsForSignOn, Running };
    Wipe wipe(EasAccountId id) const;

    /** False, after an error was printed, if no account can be added or there is such a one already. */
    bool canAdd(const AccountSettings &settings) const;
    /** The new account's identifier, or 0 after an error was printed. */
    EasAccountId add(const AccountSettings &settings, quint32 credentialsId);
    bool edit(EasAccountId id, const AccountSettings &settings);
    bool setEnabled(EasAccountId id, bool enabled);
    bool remove(EasAccountId id);

    /** Calls when accounts have come or gone, as long as the context lives. */
    void follow(QObject *context, const std::function<void()> &call) const;

    quint32 credentialsId(EasAccountId id) const;
    QString userName(EasAccountId id) const;
    QString emailAddress(EasAccountId id) const;
    /** Tells the engine that there are new credentials, and lifts the block of refused ones. */
    bool credentialsChanged(EasAccountId id, quint32 credentialsId);

private:
    std::unique_ptr<Accounts::Account> load(EasAccountId id) const;
    QStringList namesOf(EasAccountId id) const;
    static bool store(Accounts::Account &account);

    std::shared_ptr<Accounts::Manager> mManager;
};
