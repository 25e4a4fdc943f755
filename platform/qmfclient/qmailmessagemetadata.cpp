// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessagemetadata.h>

#include "internal/mailvaluedata.h"
#include "internal/statusflags.h"

#include <QDebug>

const quint64 &QMailMessageMetaData::Incoming = maskOf(messageFlags, "Incoming");
const quint64 &QMailMessageMetaData::Outgoing = maskOf(messageFlags, "Outgoing");
const quint64 &QMailMessageMetaData::Sent = maskOf(messageFlags, "Sent");
const quint64 &QMailMessageMetaData::Replied = maskOf(messageFlags, "Replied");
const quint64 &QMailMessageMetaData::RepliedAll = maskOf(messageFlags, "RepliedAll");
const quint64 &QMailMessageMetaData::Forwarded = maskOf(messageFlags, "Forwarded");
const quint64 &QMailMessageMetaData::ContentAvailable = maskOf(messageFlags, "ContentAvailable");
const quint64 &QMailMessageMetaData::Read = maskOf(messageFlags, "Read");
const quint64 &QMailMessageMetaData::Removed = maskOf(messageFlags, "Removed");
const quint64 &QMailMessageMetaData::ReadElsewhere = maskOf(messageFlags, "ReadElsewhere");
const quint64 &QMailMessageMetaData::UnloadedData = maskOf(messageFlags, "UnloadedData");
const quint64 &QMailMessageMetaData::New = maskOf(messageFlags, "New");
const quint64 &QMailMessageMetaData::ReadReplyRequested = maskOf(messageFlags, "ReadReplyRequested");
const quint64 &QMailMessageMetaData::Trash = maskOf(messageFlags, "Trash");
const quint64 &QMailMessageMetaData::PartialContentAvailable =
    maskOf(messageFlags, "PartialContentAvailable");
const quint64 &QMailMessageMetaData::HasAttachments = maskOf(messageFlags, "HasAttachments");
const quint64 &QMailMessageMetaData::HasReferences = maskOf(messageFlags, "HasReferences");
const quint64 &QMailMessageMetaData::HasUnresolvedReferences =
    maskOf(messageFlags, "HasUnresolvedReferences");
const quint64 &QMailMessageMetaData::Draft = maskOf(messageFlags, "Draft");
const quint64 &QMailMessageMetaData::Outbox = maskOf(messageFlags, "Outbox");
const quint64 &QMailMessageMetaData::Junk = maskOf(messageFlags, "Junk");
const quint64 &QMailMessageMetaData::TransmitFromExternal = maskOf(messageFlags, "TransmitFromExternal");
const quint64 &QMailMessageMetaData::LocalOnly = maskOf(messageFlags, "LocalOnly");
const quint64 &QMailMessageMetaData::Temporary = maskOf(messageFlags, "Temporary");
const quint64 &QMailMessageMetaData::ImportantElsewhere = maskOf(messageFlags, "ImportantElsewhere");
const quint64 &QMailMessageMetaData::Important = maskOf(messageFlags, "Important");
const quint64 &QMailMessageMetaData::HighPriority = maskOf(messageFlags, "HighPriority");
const quint64 &QMailMessageMetaData::LowPriority = maskOf(messageFlags, "LowPriority");
const quint64 &QMailMessageMetaData::CalendarInvitation = maskOf(messageFlags, "CalendarInvitation");
const quint64 &QMailMessageMetaData::Todo = maskOf(messageFlags, "Todo");
const quint64 &QMailMessageMetaData::HasSignature = maskOf(messageFlags, "HasSignature");
const quint64 &QMailMessageMetaData::HasEncryption = maskOf(messageFlags, "HasEncryption");
const quint64 &QMailMessageMetaData::NoNotification = maskOf(messageFlags, "NoNotification");
const quint64 &QMailMessageMetaData::CalendarCancellation = maskOf(messageFlags, "CalendarCancellation");

QMailMessageMetaData::QMailMessageMetaData()
    : d(new QMailMessageMetaDataData)
{
}

QMailMessageMetaData::QMailMessageMetaData(const QMailMessageId &id)
    : QMailMessageMetaData(QMailStore::instance()->messageMetaData(id))
{
}

QMailMessageMetaData::QMailMessageMetaData(const QString &uid, const QMailAccountId &accountId)
    : QMailMessageMetaData(QMailStore::instance()->messageMetaData(uid, accountId))
{
}

QMailMessageMetaData::QMailMessageMetaData(const QMailMessageMetaData &other) = default;
QMailMessageMetaData &QMailMessageMetaData::operator=(const QMailMessageMetaData &other) = default;
QMailMessageMetaData::~QMailMessageMetaData() = default;

QMailMessageId QMailMessageMetaData::id() const
{
    return d->id;
}

void QMailMessageMetaData::setId(const QMailMessageId &id)
{
    d->id = id;
}

QMailAccountId QMailMessageMetaData::parentAccountId() const
{
    return d->parentAccountId;
}

void QMailMessageMetaData::setParentAccountId(const QMailAccountId &value)
{
    d->parentAccountId = value;
    d->modified = true;
}

QMailFolderId QMailMessageMetaData::parentFolderId() const
{
    return d->parentFolderId;
}

void QMailMessageMetaData::setParentFolderId(const QMailFolderId &value)
{
    d->parentFolderId = value;
    d->modified = true;
}

QMailFolderId QMailMessageMetaData::previousParentFolderId() const
{
    return d->previousParentFolderId;
}

void QMailMessageMetaData::setPreviousParentFolderId(const QMailFolderId &value)
{
    d->previousParentFolderId = value;
    d->modified = true;
}

QMailFolderId QMailMessageMetaData::restoreFolderId() const
{
    return d->restoreFolderId;
}

void QMailMessageMetaData::setRestoreFolderId(const QMailFolderId &value)
{
    d->restoreFolderId = value;
    d->modified = true;
}

QMailThreadId QMailMessageMetaData::parentThreadId() const
{
    return d->parentThreadId;
}

void QMailMessageMetaData::setParentThreadId(const QMailThreadId &value)
{
    d->parentThreadId = value;
    d->modified = true;
}

QMailMessageId QMailMessageMetaData::inResponseTo() const
{
    return d->inResponseTo;
}

void QMailMessageMetaData::setInResponseTo(const QMailMessageId &value)
{
    d->inResponseTo = value;
    d->modified = true;
}

QMailMessageMetaData::ResponseType QMailMessageMetaData::responseType() const
{
    return d->responseType;
}

void QMailMessageMetaData::setResponseType(QMailMessageMetaData::ResponseType value)
{
    d->responseType = value;
    d->modified = true;
}

QMailMessageMetaData::MessageType QMailMessageMetaData::messageType() const
{
    return d->messageType;
}

void QMailMessageMetaData::setMessageType(QMailMessageMetaData::MessageType value)
{
    d->messageType = value;
    d->modified = true;
}

QMailMessageMetaData::ContentType QMailMessageMetaData::content() const
{
    return d->content;
}

void QMailMessageMetaData::setContent(QMailMessageMetaData::ContentType value)
{
    d->content = value;
    d->modified = true;
}

QString QMailMessageMetaData::serverUid() const
{
    return d->serverUid;
}

void QMailMessageMetaData::setServerUid(const QString &value)
{
    d->serverUid = value;
    d->modified = true;
}

QMailAddress QMailMessageMetaData::from() const
{
    return d->from;
}

void QMailMessageMetaData::setFrom(const QMailAddress &value)
{
    d->from = value;
    d->modified = true;
}

QString QMailMessageMetaData::subject() const
{
    return d->subject;
}

void QMailMessageMetaData::setSubject(const QString &value)
{
    d->subject = value;
    d->modified = true;
}

QMailTimeStamp QMailMessageMetaData::date() const
{
    return d->date;
}

void QMailMessageMetaData::setDate(const QMailTimeStamp &value)
{
    d->date = value;
    d->modified = true;
}

QMailTimeStamp QMailMessageMetaData::receivedDate() const
{
    return d->receivedDate;
}

void QMailMessageMetaData::setReceivedDate(const QMailTimeStamp &value)
{
    d->receivedDate = value;
    d->modified = true;
}

uint QMailMessageMetaData::size() const
{
    return d->size;
}

void QMailMessageMetaData::setSize(uint value)
{
    d->size = value;
    d->modified = true;
}

QString QMailMessageMetaData::preview() const
{
    return d->preview;
}

void QMailMessageMetaData::setPreview(const QString &value)
{
    d->preview = value;
    d->modified = true;
}

QList<QMailAddress> QMailMessageMetaData::recipients() const
{
    return d->recipients;
}

QString QMailMessageMetaData::contentScheme() const
{
    return d->contentScheme;
}

bool QMailMessageMetaData::setContentScheme(const QString &scheme)
{
    if (!d->contentScheme.isEmpty() && d->contentScheme != scheme)
        qWarning() << "content scheme of message" << d->id.toULongLong() << "changes from" << d->contentScheme
                   << "to" << scheme;
    d->contentScheme = scheme;
    d->modified = true;
    return true;
}

QString QMailMessageMetaData::contentIdentifier() const
{
    return d->contentIdentifier;
}

bool QMailMessageMetaData::setContentIdentifier(const QString &identifier)
{
    d->contentIdentifier = identifier;
    d->modified = true;
    return true;
}

bool QMailMessageMetaData::contentAvailable() const
{
    return (d->status & ContentAvailable) != 0;
}

bool QMailMessageMetaData::partialContentAvailable() const
{
    return (d->status & PartialContentAvailable) != 0;
}

bool QMailMessageMetaData::dataModified() const
{
    return d->modified || d->fields.touched;
}

quint64 QMailMessageMetaData::status() const
{
    return d->status;
}

void QMailMessageMetaData::setStatus(quint64 newStatus)
{
    d->status = newStatus;
    d->modified = true;
}

void QMailMessageMetaData::setStatus(quint64 mask, bool set)
{
    setStatus(set ? d->status | mask : d->status & ~mask);
}

quint64 QMailMessageMetaData::statusMask(const QString &flagName)
{
    return QMailStore::instance()->messageStatusMask(flagName);
}

QString QMailMessageMetaData::customField(const QString &name) const
{
    return d->fields.values.value(name);
}

void QMailMessageMetaData::setCustomField(const QString &name, const QString &value)
{
    d->fields.set(name, value);
}

void QMailMessageMetaData::setCustomFields(const QMap<QString, QString> &fields)
{
    d->fields.replace(fields);
}

void QMailMessageMetaData::removeCustomField(const QString &name)
{
    d->fields.remove(name);
}

const QMap<QString, QString> &QMailMessageMetaData::customFields() const
{
    return d->fields.values;
}
