// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailstore.h>

#include "internal/mailstoreengine.h"
#include "internal/mailvaluedata.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <iterator>

namespace {

thread_local std::unique_ptr<QMailStore> storeOfThread;

template <typename List> List idList(const QList<quint64> &numbers)
{
    List ids;
    ids.reserve(numbers.size());
    for (const quint64 number : numbers)
        ids.append(typename List::value_type(number));
    return ids;
}

bool changesContent(const QMailMessage &message)
{
    return message.contentModified();
}

bool changesContent(const QMailMessageMetaData &)
{
    return false;
}

const MimeNode *contentOf(const QMailMessage &message)
{
    message.preview(); // Follows the text once more before the metadata is written.
    return &MailValueAccess::node(message);
}

const MimeNode *contentOf(const QMailMessageMetaData &)
{
    return nullptr;
}

void markStored(QMailMessage &message)
{
    if (message.contentModified())
        MailValueAccess::own(message).clearModified();
}

void markStored(QMailMessageMetaData &) {}

template <typename Message> bool addAll(MailStoreEngine &engine, const QList<Message *> &messages)
{
    QVector<MessageTable::Stored> stored(messages.size());
    return engine.write(
        [&](MailChanges &changes) {
            for (int i = 0; i < messages.size(); ++i) {
                const MimeNode *content = contentOf(*messages.at(i));
                if (!engine.messages.add(*messages.at(i), content, stored[i], changes))
                    return false;
            }
            return true;
        },
        [&] {
            for (int i = 0; i < messages.size(); ++i) {
                MessageTable::takeOver(stored.at(i), *messages.at(i));
                markStored(*messages.at(i));
            }
        });
}

template <typename Message> bool updateAll(MailStoreEngine &engine, const QList<Message *> &messages)
{
    const bool allValid = std::all_of(
        messages.cbegin(), messages.cend(), [](const Message *message) { return message->id().isValid(); });
    const bool anything = std::any_of(messages.cbegin(), messages.cend(),
        [](const Message *message) { return message->dataModified() || changesContent(*message); });
    if (allValid && !anything && engine.isUsable())
        return true;
    QVector<MessageTable::Stored> stored(messages.size());
    return engine.write(
        [&](MailChanges &changes) {
            for (int i = 0; i < messages.size(); ++i) {
                const Message &message = *messages.at(i);
                const MimeNode *content = changesContent(message) ? contentOf(message) : nullptr;
                if (!engine.messages.update(message, content, stored[i], changes))
                    return false;
            }
            return true;
        },
        [&] {
            for (int i = 0; i < messages.size(); ++i) {
                if (stored.at(i).id == 0)
                    continue;
                MessageTable::takeOver(stored.at(i), *messages.at(i));
                markStored(*messages.at(i));
            }
        });
}

} // namespace

QMailStore *QMailStore::instance()
{
    if (!storeOfThread) {
        qRegisterMetaType<QMailAccountIdList>("QMailAccountIdList");
        qRegisterMetaType<QMailFolderIdList>("QMailFolderIdList");
        qRegisterMetaType<QMailMessageIdList>("QMailMessageIdList");
        storeOfThread.reset(new QMailStore);
        // The application's own store goes before what it speaks through does.
        if (QCoreApplication::instance()
            && QCoreApplication::instance()->thread() == QThread::currentThread())
            qAddPostRoutine([] { storeOfThread.reset(); });
    }
    return storeOfThread.get();
}

QMailStore::InitializationState QMailStore::initializationState()
{
    if (!storeOfThread)
        return Uninitialized;
    return storeOfThread->mEngine->isUsable() ? Initialized : InitializationFailed;
}

QMailStore::QMailStore()
    : mEngine(std::make_unique<MailStoreEngine>(*this))
{
}

QMailStore::~QMailStore() = default;

QMailStore::ErrorCode QMailStore::lastError() const
{
    return mEngine->isUsable() ? mEngine->database.lastError() : StorageInaccessible;
}

bool QMailStore::addAccount(QMailAccount *account, QMailAccountConfiguration *config)
{
    if (!account || !config) {
        mEngine->database.setLastError(ConstraintFailure);
        return false;
    }
    return mEngine->write([&](MailChanges &changes) {
        if (mEngine->livesInAccountStore(account->id().toULongLong())) {
            mEngine->database.setLastError(ConstraintFailure);
            return false;
        }
        return mEngine->accounts.add(*account, mEngine->lowestFreeAccountId(), changes);
    });
}

bool QMailStore::addFolder(QMailFolder *f)
{
    return mEngine->write([&](MailChanges &changes) {
        const QMailAccountId account = f->parentAccountId();
        if (account.isValid() && !mEngine->accountExists(account.toULongLong())) {
            mEngine->database.setLastError(ConstraintFailure);
            return false;
        }
        return mEngine->folders.add(*f, changes);
    });
}

bool QMailStore::addMessage(QMailMessage *m)
{
    return addMessages(QList<QMailMessage *> { m });
}

bool QMailStore::addMessage(QMailMessageMetaData *m)
{
    return addMessages(QList<QMailMessageMetaData *> { m });
}

bool QMailStore::addMessages(const QList<QMailMessage *> &m)
{
    return addAll(*mEngine, m);
}

bool QMailStore::addMessages(const QList<QMailMessageMetaData *> &m)
{
    return addAll(*mEngine, m);
}

bool QMailStore::removeAccount(const QMailAccountId &id)
{
    if (!mEngine->accounts.isOwn(id.toULongLong())) {
        // An account of the account store ends there.
        const bool foreign = mEngine->livesInAccountStore(id.toULongLong());
        mEngine->database.setLastError(foreign ? ConstraintFailure : InvalidId);
        return false;
    }
    return mEngine->write(
        [&](MailChanges &changes) { return mEngine->removeAccount(id.toULongLong(), changes); });
}

bool QMailStore::removeFolder(const QMailFolderId &id, MessageRemovalOption option)
{
    if (!mEngine->folders.exists(id.toULongLong())) {
        if (mEngine->database.lastError() == NoError)
            mEngine->database.setLastError(InvalidId);
        return false;
    }
    return mEngine->write([&](MailChanges &changes) {
        return mEngine->removeFolders(
            mEngine->folders.withDescendants(id.toULongLong()), option == CreateRemovalRecord, changes);
    });
}

bool QMailStore::removeFolders(const QMailFolderKey &key, MessageRemovalOption option)
{
    return mEngine->write([&](MailChanges &changes) {
        const QList<quint64> ids = mEngine->folders.query(MailValueAccess::node(key), 0, 0);
        return mEngine->removeFolders(ids, option == CreateRemovalRecord, changes);
    });
}

bool QMailStore::removeMessage(const QMailMessageId &id, MessageRemovalOption option)
{
    return removeMessages(QMailMessageKey::id(id), option);
}

bool QMailStore::removeMessages(const QMailMessageKey &key, MessageRemovalOption option)
{
    return mEngine->write([&](MailChanges &changes) {
        return mEngine->messages.remove(MailValueAccess::node(key), option == CreateRemovalRecord, changes);
    });
}

bool QMailStore::updateAccount(QMailAccount *account, QMailAccountConfiguration *)
{
    return mEngine->write([&](MailChanges &changes) {
        const quint64 id = account->id().toULongLong();
        if (!mEngine->accountExists(id)) {
            mEngine->database.setLastError(InvalidId);
            return false;
        }
        changes.add(MailChanges::AccountsUpdated, id);
        return mEngine->accounts.update(*account);
    });
}

bool QMailStore::updateFolder(QMailFolder *f)
{
    return mEngine->write([&](MailChanges &changes) { return mEngine->folders.update(*f, changes); });
}

bool QMailStore::updateMessage(QMailMessage *m)
{
    return updateMessages(QList<QMailMessage *> { m });
}

bool QMailStore::updateMessage(QMailMessageMetaData *m)
{
    return updateMessages(QList<QMailMessageMetaData *> { m });
}

bool QMailStore::updateMessages(const QList<QMailMessage *> &m)
{
    return updateAll(*mEngine, m);
}

bool QMailStore::updateMessages(const QList<QMailMessageMetaData *> &m)
{
    return updateAll(*mEngine, m);
}

bool QMailStore::updateMessagesMetaData(const QMailMessageKey &key, quint64 messageStatus, bool set)
{
    return mEngine->write([&](MailChanges &changes) {
        return mEngine->messages.setStatus(MailValueAccess::node(key), messageStatus, set, changes);
    });
}

int QMailStore::countMessages(const QMailMessageKey &key) const
{
    return mEngine->messages.count(MailValueAccess::node(key));
}

int QMailStore::countFolders(const QMailFolderKey &key) const
{
    return mEngine->folders.count(MailValueAccess::node(key));
}

const QMailAccountIdList QMailStore::queryAccounts(
    const QMailAccountKey &, const QMailAccountSortKey &, uint limit, uint offset) const
{
    const QList<quint64> ids = mEngine->accountIds().mid(int(offset), limit == 0 ? -1 : int(limit));
    return idList<QMailAccountIdList>(ids);
}

const QMailFolderIdList QMailStore::queryFolders(
    const QMailFolderKey &key, const QMailFolderSortKey &, uint limit, uint offset) const
{
    return idList<QMailFolderIdList>(mEngine->folders.query(MailValueAccess::node(key), limit, offset));
}

const QMailMessageIdList QMailStore::queryMessages(
    const QMailMessageKey &key, const QMailMessageSortKey &, uint limit, uint offset) const
{
    return idList<QMailMessageIdList>(mEngine->messages.query(MailValueAccess::node(key), limit, offset));
}

QMailAccount QMailStore::account(const QMailAccountId &id) const
{
    QMailAccount account;
    mEngine->loadAccount(id.toULongLong(), account);
    return account;
}

QMailFolder QMailStore::folder(const QMailFolderId &id) const
{
    QMailFolder folder;
    mEngine->folders.load(id.toULongLong(), folder);
    return folder;
}

QMailMessage QMailStore::message(const QMailMessageId &id) const
{
    QMailMessage message;
    if (mEngine->messages.load(id.toULongLong(), message)) {
        MimeNode &node = MailValueAccess::unloadedOwn(message);
        node.message = id;
        node.unloaded = !message.contentIdentifier().isEmpty();
    }
    return message;
}

QMailMessage QMailStore::message(const QString &uid, const QMailAccountId &accountId) const
{
    return message(QMailMessageId(mEngine->messages.idOf(uid, accountId.toULongLong())));
}

QMailMessageMetaData QMailStore::messageMetaData(const QMailMessageId &id) const
{
    QMailMessageMetaData message;
    mEngine->messages.load(id.toULongLong(), message);
    return message;
}

QMailMessageMetaData QMailStore::messageMetaData(const QString &uid, const QMailAccountId &accountId) const
{
    return messageMetaData(QMailMessageId(mEngine->messages.idOf(uid, accountId.toULongLong())));
}

const QMailMessageRemovalRecordList QMailStore::messageRemovalRecords(
    const QMailAccountId &parentAccountId, const QMailFolderId &parentFolderId) const
{
    return mEngine->messages.removalRecords(parentAccountId.toULongLong(), parentFolderId.toULongLong());
}

bool QMailStore::purgeMessageRemovalRecords(
    const QMailAccountId &parentAccountId, const QStringList &serverUid)
{
    return mEngine->write([&](MailChanges &changes) {
        return mEngine->messages.purgeRemovalRecords(parentAccountId.toULongLong(), serverUid, changes);
    });
}

bool QMailStore::registerMessageStatusFlag(const QString &name)
{
    return mEngine->registerFlag(QStringLiteral("message"), messageFlags, std::size(messageFlags), name);
}

quint64 QMailStore::messageStatusMask(const QString &name) const
{
    return mEngine->flagMask(QStringLiteral("message"), messageFlags, std::size(messageFlags), name);
}

bool QMailStore::registerFolderStatusFlag(const QString &name)
{
    return mEngine->registerFlag(QStringLiteral("folder"), folderFlags, std::size(folderFlags), name);
}

quint64 QMailStore::folderStatusMask(const QString &name) const
{
    return mEngine->flagMask(QStringLiteral("folder"), folderFlags, std::size(folderFlags), name);
}

bool QMailStore::registerAccountStatusFlag(const QString &name)
{
    return mEngine->registerFlag(QStringLiteral("account"), accountFlags, std::size(accountFlags), name);
}

quint64 QMailStore::accountStatusMask(const QString &name) const
{
    return mEngine->flagMask(QStringLiteral("account"), accountFlags, std::size(accountFlags), name);
}

void QMailStore::flushIpcNotifications()
{
    if (mEngine->notifier)
        mEngine->notifier->flush();
}
