// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/mailfixture.h"

#include "application/mapping/easdatabase.h"
#include "storages/mail/mailmessagewriter.h"

#include <qmailaccountconfiguration.h>
#include <qmailmessagekey.h>

namespace {

EasAccountId nextAccountId()
{
    static EasAccountId last = 100;
    return ++last;
}

} // namespace

FakeCalendarStorage::FakeCalendarStorage(const QByteArray &iCalendar)
    : CalendarStorage(nullptr)
    , mICalendar(iCalendar)
{
}

bool FakeCalendarStorage::updateFolders(QList<EasFolderItem> &, QList<EasFolderItem> &, const QStringList &)
{
    return true;
}

bool FakeCalendarStorage::updateItems(
    QList<EasCalendarItem> &, QList<EasCalendarItem> &, const QStringList &, QStringList &)
{
    return true;
}

LocalQuery FakeCalendarStorage::queryLocalUpdates(const QString &, qint64, qint64 &, QList<EasCalendarItem> &,
    QList<EasCalendarItem> &, QStringList &, UploadBudget *)
{
    return LocalQuery::Answered;
}

bool FakeCalendarStorage::uploadedLocalChanges(
    QList<EasCalendarItem> &, QList<EasCalendarItem> &, const QStringList &)
{
    return true;
}

QString FakeCalendarStorage::encodeMeetingResponse(const QString &requestData,
    EasItemsCommon::UserResponseType response, bool allowMissingMethod, const QDateTime &occurrence) const
{
    if (refusesToAnswer)
        return {};
    const QString kind = allowMissingMethod ? QStringLiteral("event") : QStringLiteral("request");
    return QStringLiteral("%1 to %2 %3 %4")
        .arg(QString::number(response), kind, requestData, occurrence.toUTC().toString(Qt::ISODate))
        .trimmed();
}

QString FakeCalendarStorage::getEventIcal(const QString &localId, const QDateTime &) const
{
    return events.value(localId);
}

QByteArray FakeCalendarStorage::iTIPRequestData(
    const EasMeetingRequestContainer &request, const QString &subject, const QString &text)
{
    organizer = request.organizer();
    summary = subject;
    description = text;
    return mICalendar;
}

MailFixture::MailFixture()
    : account(nextAccountId())
    , calendar(new FakeCalendarStorage("BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n"))
    , context { QMailStore::instance(), &account, QMailAccountId(account.id()) }
{
    account.events = calendar;
    QMailAccount mailAccount;
    mailAccount.setId(context.mailAccountId);
    mailAccount.setName(QStringLiteral("test"));
    QMailAccountConfiguration configuration;
    if (!context.store->addAccount(&mailAccount, &configuration) || mailAccount.id() != context.mailAccountId)
        qFatal("no mail account %llu", account.id());
}

MailFixture::~MailFixture()
{
    context.store->removeAccount(context.mailAccountId);
}

QMailFolderId MailFixture::addStoreFolder(const QString &name, const QMailFolderId &parent, quint64 status)
{
    QMailFolder folder(name, parent, context.mailAccountId);
    folder.setStatus(status, true);
    if (!context.store->addFolder(&folder))
        qFatal("no folder %s", qPrintable(name));
    return folder.id();
}

QMailFolderId MailFixture::addFolder(
    const QString &serverId, EasFolderItem::FolderType type, const QMailFolderId &parent)
{
    const QMailFolderId id = addStoreFolder(serverId, parent);
    EasFolderItem row;
    row.setServerId(serverId);
    row.setServerParentId(QStringLiteral("0"));
    row.setLocalId(QString::number(id.toULongLong()));
    row.setDisplayName(serverId);
    row.setType(type);
    row.setSavedInStorage(true);
    if (!EasDatabase::instance()->addFolderItems(account.id(), { row }))
        qFatal("no row for folder %s", qPrintable(serverId));
    return id;
}

EasEmailItem MailFixture::item(const QString &serverId, const QString &collectionId) const
{
    EasEmailItem item;
    item.setServerId(serverId);
    item.setCollectionId(collectionId);
    item.setLocalCollectionId(
        EasDatabase::instance()->folderItemByServerId(account.id(), collectionId)->localId().toULongLong());
    item.setSubject(QStringLiteral("Message ") + serverId);
    item.setFromAddress(QStringLiteral("\"Doe, John\" <john@example.org>"));
    item.setRecipientsTo(QStringLiteral("alice@example.org"));
    item.setDateReceived(QStringLiteral("2026-03-04T05:06:07.000Z"));
    item.setBody(body(EasBodyContainer::PlainTextBodyType, QStringLiteral("Text of ") + serverId));
    return item;
}

EasBodyContainer MailFixture::body(EasBodyContainer::BodyType type, const QString &data)
{
    EasBodyContainer body;
    body.setType(type);
    body.setData(data);
    body.setEstimatedDataSize(data.toUtf8().size());
    return body;
}

EasAttachmentContainer MailFixture::attachment(
    const QString &name, const QString &reference, int size, bool isInline)
{
    EasAttachmentContainer attachment;
    attachment.setDisplayName(name);
    attachment.setFileReference(reference);
    attachment.setEstimatedDataSize(size);
    attachment.setIsInline(isInline);
    attachment.setMethod(EasAttachmentContainer::NormalAttachmentMethod);
    return attachment;
}

QMailMessageId MailFixture::addMessage(const EasEmailItem &item)
{
    const std::unique_ptr<QMailMessage> message = MailMessageWriter(context).mailMessageFromEmailItem(item);
    if (!message || !context.store->addMessage(message.get()))
        qFatal("no message %s", qPrintable(item.serverId()));
    map(item, message->id());
    return message->id();
}

QMailMessageId MailFixture::addUnsent(const QMailFolderId &folder)
{
    QMailMessage message;
    message.setParentAccountId(mailAccountId());
    message.setParentFolderId(folder);
    message.setSubject(QStringLiteral("unsent"));
    message.setStatus(QMailMessage::Outgoing | QMailMessage::Outbox, true);
    if (!context.store->addMessage(&message))
        qFatal("no unsent message");
    return message.id();
}

void MailFixture::map(const EasEmailItem &item, const QMailMessageId &id)
{
    EasEmailItem row = item;
    row.setLocalId(QString::number(id.toULongLong()));
    if (!EasDatabase::instance()->addEmailItems(account.id(), { row }))
        qFatal("no row for message %s", qPrintable(item.serverId()));
}

QMailMessage MailFixture::message(const QMailMessageId &id) const
{
    return context.store->message(id);
}

QMailMessage MailFixture::message(const QString &serverUid) const
{
    return context.store->message(serverUid, context.mailAccountId);
}

int MailFixture::messageCount() const
{
    return context.store->countMessages(QMailMessageKey::parentAccountId(context.mailAccountId));
}

void MailFixture::setStatus(const QMailMessageId &id, quint64 mask, bool set) const
{
    context.store->updateMessagesMetaData(QMailMessageKey::id(id), mask, set);
}
