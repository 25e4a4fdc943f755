// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailbox.h"

#include "client/output.h"

#include <qmailaccount.h>
#include <qmaildisconnected.h>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>
#include <qmailmessageremovalrecord.h>
#include <qmailstore.h>

#include <algorithm>

namespace {

/** Tells other processes at once; false after an error was printed. */
bool told(bool changed)
{
    if (changed)
        QMailStore::instance()->flushIpcNotifications();
    else
        Output::error(QStringLiteral("the mail store refused the change"));
    return changed;
}

bool fits(const QMailMessageMetaData &message, const MailFilter &filter)
{
    return message.from().toString().contains(filter.from, Qt::CaseInsensitive)
        && message.subject().contains(filter.subject, Qt::CaseInsensitive)
        && (!filter.since.isValid() || message.date().toLocalTime().date() >= filter.since);
}

} // namespace

MailBox::MailBox(EasAccountId accountId)
    : mAccountId(accountId)
{
}

bool MailBox::open()
{
    if (QMailStore::instance() && QMailStore::initializationState() == QMailStore::Initialized)
        return true;
    Output::error(QStringLiteral("the mail store cannot be opened"));
    return false;
}

QMailFolderIdList MailBox::folders() const
{
    QMailFolderIdList ids =
        QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(QMailAccountId(mAccountId)));
    std::sort(ids.begin(), ids.end(), [](const QMailFolderId &left, const QMailFolderId &right) {
        return QString::localeAwareCompare(path(left), path(right)) < 0;
    });
    return ids;
}

QMailFolderId MailBox::findFolder(const QString &wanted) const
{
    QMailFolderIdList found;
    const QMailFolderIdList ids = folders();
    for (const QMailFolderId &id : ids) {
        if (QString::number(id.toULongLong()) == wanted)
            return id;
        if (path(id).compare(wanted, Qt::CaseInsensitive) == 0)
            found.append(id);
    }
    if (found.size() == 1)
        return found.first();
    Output::error(found.isEmpty()
            ? QStringLiteral("there is no folder \"%1\"").arg(wanted)
            : QStringLiteral("several folders are called \"%1\"; give the number of one").arg(wanted));
    return {};
}

QMailFolderIdList MailBox::ancestry(const QMailFolderId &id)
{
    QMailFolderIdList ids;
    QMailFolderId current = id;
    // A damaged store could hold a circle of parents.
    while (current.isValid() && !ids.contains(current)) {
        ids.prepend(current);
        current = QMailFolder(current).parentFolderId();
    }
    return ids;
}

QString MailBox::path(const QMailFolderId &id)
{
    QStringList names;
    for (const QMailFolderId &folder : ancestry(id))
        names.append(QMailFolder(folder).displayName());
    return names.join(QLatin1Char('/'));
}

int MailBox::depth(const QMailFolderId &id)
{
    return ancestry(id).size() - 1;
}

int MailBox::count(const QMailFolderId &id, bool unreadOnly)
{
    QMailMessageKey key = QMailMessageKey::parentFolderId(id);
    if (unreadOnly)
        key &= QMailMessageKey::status(QMailMessage::Read, QMailDataComparator::Excludes);
    return QMailStore::instance()->countMessages(key);
}

QMailMessageKey MailBox::ownMessages() const
{
    return QMailMessageKey::parentAccountId(QMailAccountId(mAccountId))
        & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Excludes);
}

int MailBox::waiting() const
{
    const auto has = [](quint64 status) {
        return QMailMessageKey::status(status, QMailDataComparator::Includes);
    };
    // As the engine looks for changes: the store keeps what the server knows beside what the user did.
    const QMailMessageKey readHere = has(QMailMessage::Read) & ~has(QMailMessage::ReadElsewhere);
    const QMailMessageKey unreadHere = ~has(QMailMessage::Read) & has(QMailMessage::ReadElsewhere);
    const QMailMessageKey moved =
        QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::NotEqual);
    const QMailAccountId account(mAccountId);
    QMailStore *const store = QMailStore::instance();
    return store->countMessages(ownMessages() & (readHere | unreadHere | moved))
        + store->messageRemovalRecords(account).size();
}

QMailMessageIdList MailBox::allMessages() const
{
    return QMailStore::instance()->queryMessages(ownMessages());
}

QMailMessageIdList MailBox::messages(const MailFilter &filter) const
{
    QMailMessageKey key = ownMessages();
    if (filter.folder.isValid())
        key &= QMailMessageKey::parentFolderId(filter.folder);
    if (filter.isUnreadOnly)
        key &= QMailMessageKey::status(QMailMessage::Read, QMailDataComparator::Excludes);
    const QMailMessageIdList all = QMailStore::instance()->queryMessages(key);
    QList<QPair<QDateTime, QMailMessageId>> dated;
    for (const QMailMessageId &id : all) {
        const QMailMessageMetaData message(id);
        if (fits(message, filter))
            dated.append({ message.date().toUTC(), id });
    }
    std::sort(dated.begin(), dated.end(), [](const auto &left, const auto &right) {
        return left.first != right.first ? left.first > right.first : right.second < left.second;
    });
    QMailMessageIdList ids;
    for (const auto &entry : qAsConst(dated))
        ids.append(entry.second);
    return ids;
}

QMailMessageId MailBox::findMessage(const QString &number) const
{
    const QMailMessageMetaData message { QMailMessageId(number.toULongLong()) };
    if (message.id().isValid() && message.parentAccountId() == QMailAccountId(mAccountId))
        return message.id();
    Output::error(QStringLiteral("there is no message %1").arg(number));
    return {};
}

std::optional<QMailMessage> MailBox::read(const QMailMessageId &id)
{
    const QMailMessage message(id);
    // The content is read when it is first asked for.
    message.partCount();
    if (message.id().isValid() && QMailStore::instance()->lastError() == QMailStore::NoError)
        return message;
    Output::error(QStringLiteral("message %1 cannot be read").arg(id.toULongLong()));
    return std::nullopt;
}

bool MailBox::setStatus(const QMailMessageIdList &ids, quint64 status, bool set)
{
    return told(QMailStore::instance()->updateMessagesMetaData(QMailMessageKey::id(ids), status, set));
}

bool MailBox::move(const QMailMessageIdList &ids, const QMailFolderId &folder)
{
    QMailDisconnected::moveToFolder(ids, folder);
    const int moved = QMailStore::instance()->countMessages(
        QMailMessageKey::id(ids) & QMailMessageKey::parentFolderId(folder));
    return told(moved == ids.size());
}

bool MailBox::remove(const QMailMessageIdList &ids)
{
    QMailStore *const store = QMailStore::instance();
    const QMailMessageKey all = QMailMessageKey::id(ids);
    // Of what the server never had, and of what a search has found, it is not to be told: such a record would
    // wait for ever.
    const QMailMessageKey local = QMailMessageKey::serverUid(QString())
        | QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Includes);
    return told(store->removeMessages(all & local, QMailStore::NoRemovalRecord)
        && store->removeMessages(all & ~local, QMailStore::CreateRemovalRecord));
}

void MailBox::place(QMailMessageMetaData &message, QMailFolder::StandardFolder folder) const
{
    const QMailFolderId own = QMailAccount(QMailAccountId(mAccountId)).standardFolder(folder);
    // The account goes on naming a folder that is gone.
    const bool isThere = QMailFolder(own).id().isValid();
    message.setParentFolderId(isThere ? own : QMailFolderId(quint64(1)));
    message.setStatus(QMailMessage::Outbox, folder == QMailFolder::OutboxFolder);
    message.setStatus(QMailMessage::Draft, folder == QMailFolder::DraftsFolder);
}

bool MailBox::add(QMailMessage *message)
{
    return told(QMailStore::instance()->addMessage(message));
}

bool MailBox::update(QMailMessageMetaData *message)
{
    return told(QMailStore::instance()->updateMessage(message));
}

bool MailBox::update(QMailMessage *message)
{
    return told(QMailStore::instance()->updateMessage(message));
}
