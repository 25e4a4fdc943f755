// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

namespace Accounts {
class Manager;
}

/**
 * The mail accounts of the device's account store: those that have a service of type "e-mail". Not usable
 * where there is no session bus or no account database; then there are no such accounts, and none counts as
 * removed.
 */
class AccountBridge : public QObject
{
    Q_OBJECT

public:
    struct Record
    {
        QString name;
        QString folderSyncPolicy;
        bool valid = false;
        /** The account is there, but what it is could not be read. */
        bool unreadable = false;
    };

    AccountBridge();
    ~AccountBridge() override;

    bool isUsable() const { return mManager != nullptr; }
    QList<quint64> mailAccounts() const;
    /** Whether the account is there at all, of whatever kind. */
    bool exists(quint64 id) const;
    /** Whether the account store says that there is no such account; it does not while it cannot be read. */
    bool isGone(quint64 id) const;
    /** As it is now; invalid if there is no such account for mail, or if it cannot be read. */
    Record record(quint64 id) const;
    quint64 highestId() const;

Q_SIGNALS:
    void accountCreated(quint64 id);
    void accountRemoved(quint64 id);

private:
    void onAccountCreated(quint64 id);

    std::unique_ptr<Accounts::Manager> mManager;
};
