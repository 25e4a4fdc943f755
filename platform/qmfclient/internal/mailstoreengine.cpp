// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mailstoreengine.h"

#include "internal/contentloader.h"
#include "internal/mailvaluedata.h"

#include <QDir>
#include <QStandardPaths>

#include <algorithm>

namespace {

QString dataFolder()
{
    const QString chosen = qEnvironmentVariable("QMF_DATA");
    if (!chosen.isEmpty())
        return QDir(chosen).absolutePath();
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QLatin1String("/fennel-mailstore");
}

QMailAccount::FolderSyncPolicy policyFromText(const QString &text)
{
    if (text == QLatin1String("follow-flags"))
        return QMailAccount::SyncSelectedFolders;
    if (text == QLatin1String("inbox-and-subfolders"))
        return QMailAccount::SyncInboxAndSubfolders;
    if (text == QLatin1String("ignore-flags"))
        return QMailAccount::SyncEverything;
    return QMailAccount::SyncInboxOnly;
}

} // namespace

void loadContent(MimeNode &node)
{
    node.unloaded = false;
    MailValueAccess::engine(*QMailStore::instance()).messages.loadContent(node.message.toULongLong(), node);
}

QByteArray storedPiece(quint64 body, int piece)
{
    return MailValueAccess::engine(*QMailStore::instance()).messages.bodyPiece(body, piece);
}

MailStoreEngine::MailStoreEngine(QMailStore &store)
    : messages(database)
    , folders(database)
    , accounts(database)
{
    const QString folder = dataFolder();
    if (!database.open(folder))
        return;
    notifier = std::make_unique<ChangeNotifier>(store, folder);
    bridge = std::make_unique<AccountBridge>();
    if (bridge->isUsable())
        followAccountStore();
}

MailStoreEngine::~MailStoreEngine() = default;

void MailStoreEngine::followAccountStore()
{
    connect(bridge.get(), &AccountBridge::accountCreated, this, &MailStoreEngine::onAccountCreated);
    connect(bridge.get(), &AccountBridge::accountRemoved, this, &MailStoreEngine::onAccountRemoved);
    const QList<quint64> present = bridge->mailAccounts();
    for (const quint64 id : present)
        accounts.noteForeign(id);
    // What went while no mail store was there to see it.
    for (const quint64 id : accounts.foreign()) {
        if (bridge->isGone(id))
            onAccountRemoved(id);
    }
}

void MailStoreEngine::onAccountCreated(quint64 id)
{
    accounts.noteForeign(id);
    // Each process learns of accounts by itself, so this is told to its own listeners only.
    notifier->tellListeners(MailChanges::AccountsAdded, { id });
}

void MailStoreEngine::onAccountRemoved(quint64 id)
{
    // Accounts for other things than mail come and go unnoticed.
    if (accounts.foreign().contains(id))
        write([this, id](MailChanges &changes) { return removeAccount(id, changes); });
}

bool MailStoreEngine::write(
    const std::function<bool(MailChanges &)> &work, const std::function<void()> &stored)
{
    MailChanges changes;
    {
        MailDatabase::Transaction transaction(database);
        if (!transaction.isActive() || !work(changes) || !transaction.commit())
            return false;
    }
    if (stored)
        stored();
    notifier->tellAll(changes);
    database.setLastError(QMailStore::NoError);
    return true;
}

bool MailStoreEngine::removeFolders(const QList<quint64> &ids, bool createRecords, MailChanges &changes)
{
    QMailFolderIdList folderIds;
    for (const quint64 id : ids) {
        folderIds.append(QMailFolderId(id));
        changes.add(MailChanges::FolderContentsModified, folders.ancestors(id));
    }
    const QMailMessageKey inside = QMailMessageKey::parentFolderId(folderIds);
    if (!messages.remove(MailValueAccess::node(inside), createRecords, changes)
        || !folders.remove(ids, changes))
        return false;
    changes.drop(MailChanges::FolderContentsModified, ids);
    return true;
}

bool MailStoreEngine::removeAccount(quint64 id, MailChanges &changes)
{
    const QMailMessageKey itsMessages = QMailMessageKey::parentAccountId(QMailAccountId(id));
    const QMailFolderKey itsFolders = QMailFolderKey::parentAccountId(QMailAccountId(id));
    if (!messages.remove(MailValueAccess::node(itsMessages), false, changes)
        || !removeFolders(folders.query(MailValueAccess::node(itsFolders), 0, 0), false, changes)
        || !accounts.remove(id))
        return false;
    changes.add(MailChanges::AccountsRemoved, id);
    return true;
}

QList<quint64> MailStoreEngine::accountIds()
{
    QList<quint64> ids = accounts.own() + (bridgeDecides() ? bridge->mailAccounts() : accounts.foreign());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

bool MailStoreEngine::accountExists(quint64 id)
{
    if (accounts.isOwn(id))
        return true;
    if (!bridgeDecides())
        return accounts.foreign().contains(id);
    return bridge->record(id).valid && accounts.noteForeign(id);
}

bool MailStoreEngine::loadAccount(quint64 id, QMailAccount &account)
{
    QMailAccountData &data = MailValueAccess::data(account);
    if (accounts.isOwn(id))
        return accounts.load(id, account);
    const AccountBridge::Record record = bridgeDecides() ? bridge->record(id) : AccountBridge::Record();
    if (record.valid || (!bridgeDecides() && accounts.foreign().contains(id))) {
        data.status = QMailAccount::Enabled | QMailAccount::MessageSource | QMailAccount::CanRetrieve
            | QMailAccount::MessageSink | QMailAccount::CanTransmit;
        data.messageType = QMailMessageMetaDataFwd::Email;
        accounts.load(id, account);
        data.id = QMailAccountId(id);
        if (data.name.isEmpty())
            data.name = record.name;
        data.policy = policyFromText(record.folderSyncPolicy);
        database.setLastError(QMailStore::NoError);
        return true;
    }
    if (record.unreadable)
        database.setLastError(QMailStore::ContentInaccessible);
    else if (database.lastError() == QMailStore::NoError)
        database.setLastError(QMailStore::InvalidId);
    return false;
}

quint64 MailStoreEngine::flagMask(
    const QString &kind, const StatusFlag *fixed, std::size_t fixedCount, const QString &name)
{
    const QByteArray wanted = name.toLatin1();
    for (std::size_t i = 0; i < fixedCount; ++i) {
        if (fixed[i].name == std::string_view(wanted.constData(), std::size_t(wanted.size())))
            return fixed[i].mask;
    }
    const std::optional<QVariant> bit = database.value(
        QStringLiteral("SELECT bit FROM status_flags WHERE kind = ? AND name = ?"), { kind, name });
    return bit && bit->isValid() ? quint64(1) << bit->toInt() : 0;
}

bool MailStoreEngine::registerFlag(
    const QString &kind, const StatusFlag *fixed, std::size_t fixedCount, const QString &name)
{
    const int lastBit = 62; // SQLite counts in signed numbers.
    if (flagMask(kind, fixed, fixedCount, name) != 0)
        return true;
    return write([&](MailChanges &) {
        const std::optional<QVariant> highest =
            database.value(QStringLiteral("SELECT MAX(bit) FROM status_flags WHERE kind = ?"), { kind });
        if (!highest)
            return false;
        const int bit = highest->isNull() ? int(fixedCount) : highest->toInt() + 1;
        if (name.isEmpty() || bit > lastBit) {
            database.setLastError(QMailStore::ConstraintFailure);
            return false;
        }
        return database.run(
            QStringLiteral("INSERT OR IGNORE INTO status_flags (kind, name, bit) VALUES (?, ?, ?)"),
            { kind, name, bit });
    });
}
