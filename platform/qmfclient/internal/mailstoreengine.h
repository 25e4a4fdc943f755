// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/accountbridge.h"
#include "internal/accounttable.h"
#include "internal/changenotifier.h"
#include "internal/foldertable.h"
#include "internal/messagetable.h"
#include "internal/statusflags.h"

#include <QObject>

#include <functional>
#include <memory>

/** What stands behind one QMailStore: the tables, the account store and the way that changes are told. */
class MailStoreEngine : public QObject
{
    Q_OBJECT

public:
    explicit MailStoreEngine(QMailStore &store);
    ~MailStoreEngine() override;

    bool isUsable() const { return database.isOpen(); }

    /** Runs work in a transaction; once that stands, runs stored and tells what changed. */
    bool write(const std::function<bool(MailChanges &)> &work, const std::function<void()> &stored = {});

    bool removeFolders(const QList<quint64> &ids, bool createRecords, MailChanges &changes);
    bool removeAccount(quint64 id, MailChanges &changes);

    QList<quint64> accountIds();
    bool accountExists(quint64 id);
    bool livesInAccountStore(quint64 id) const { return bridge && bridge->exists(id); }
    bool loadAccount(quint64 id, QMailAccount &account);
    quint64 lowestFreeAccountId() const { return bridge ? bridge->highestId() + 1 : 1; }

    bool registerFlag(
        const QString &kind, const StatusFlag *fixed, std::size_t fixedCount, const QString &name);
    quint64 flagMask(
        const QString &kind, const StatusFlag *fixed, std::size_t fixedCount, const QString &name);

    MailDatabase database;
    MessageTable messages;
    FolderTable folders;
    AccountTable accounts;
    std::unique_ptr<ChangeNotifier> notifier;

private:
    void followAccountStore();
    void onAccountCreated(quint64 id);
    void onAccountRemoved(quint64 id);
    bool bridgeDecides() const { return bridge && bridge->isUsable(); }

    std::unique_ptr<AccountBridge> bridge;
};
