// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailfolder.h>

#include "internal/mailvaluedata.h"
#include "internal/statusflags.h"

const quint64 &QMailFolder::SynchronizationEnabled = maskOf(folderFlags, "SynchronizationEnabled");
const quint64 &QMailFolder::Synchronized = maskOf(folderFlags, "Synchronized");
const quint64 &QMailFolder::PartialContent = maskOf(folderFlags, "PartialContent");
const quint64 &QMailFolder::Removed = maskOf(folderFlags, "Removed");
const quint64 &QMailFolder::Incoming = maskOf(folderFlags, "Incoming");
const quint64 &QMailFolder::Outgoing = maskOf(folderFlags, "Outgoing");
const quint64 &QMailFolder::Sent = maskOf(folderFlags, "Sent");
const quint64 &QMailFolder::Trash = maskOf(folderFlags, "Trash");
const quint64 &QMailFolder::Drafts = maskOf(folderFlags, "Drafts");
const quint64 &QMailFolder::Junk = maskOf(folderFlags, "Junk");
const quint64 &QMailFolder::ChildCreationPermitted = maskOf(folderFlags, "ChildCreationPermitted");
const quint64 &QMailFolder::RenamePermitted = maskOf(folderFlags, "RenamePermitted");
const quint64 &QMailFolder::DeletionPermitted = maskOf(folderFlags, "DeletionPermitted");
const quint64 &QMailFolder::NonMail = maskOf(folderFlags, "NonMail");
const quint64 &QMailFolder::MessagesPermitted = maskOf(folderFlags, "MessagesPermitted");
const quint64 &QMailFolder::ReadOnly = maskOf(folderFlags, "ReadOnly");
const quint64 &QMailFolder::Favourite = maskOf(folderFlags, "Favourite");

QMailFolder::QMailFolder()
    : d(new QMailFolderData)
{
}

QMailFolder::QMailFolder(
    const QString &name, const QMailFolderId &parentFolderId, const QMailAccountId &parentAccountId)
    : d(new QMailFolderData)
{
    d->path = name;
    d->parentFolderId = parentFolderId;
    d->parentAccountId = parentAccountId;
}

QMailFolder::QMailFolder(const QMailFolderId &id)
    : QMailFolder(QMailStore::instance()->folder(id))
{
}

QMailFolder::QMailFolder(const QMailFolder &other) = default;
QMailFolder &QMailFolder::operator=(const QMailFolder &other) = default;
QMailFolder::~QMailFolder() = default;

QString QMailFolder::displayName() const
{
    return d->displayName.isEmpty() ? d->path : d->displayName;
}

void QMailFolder::setDisplayName(const QString &displayName)
{
    d->displayName = displayName;
}

QMailFolderId QMailFolder::id() const
{
    return d->id;
}

void QMailFolder::setId(const QMailFolderId &value)
{
    d->id = value;
}

QString QMailFolder::path() const
{
    return d->path;
}

void QMailFolder::setPath(const QString &value)
{
    d->path = value;
}

QMailFolderId QMailFolder::parentFolderId() const
{
    return d->parentFolderId;
}

void QMailFolder::setParentFolderId(const QMailFolderId &value)
{
    d->parentFolderId = value;
}

QMailAccountId QMailFolder::parentAccountId() const
{
    return d->parentAccountId;
}

void QMailFolder::setParentAccountId(const QMailAccountId &value)
{
    d->parentAccountId = value;
}

quint64 QMailFolder::status() const
{
    return d->status;
}

void QMailFolder::setStatus(quint64 newStatus)
{
    d->status = newStatus;
}

void QMailFolder::setStatus(quint64 mask, bool set)
{
    setStatus(set ? d->status | mask : d->status & ~mask);
}

quint64 QMailFolder::statusMask(const QString &flagName)
{
    return QMailStore::instance()->folderStatusMask(flagName);
}

QString QMailFolder::customField(const QString &name) const
{
    return d->fields.values.value(name);
}

void QMailFolder::setCustomField(const QString &name, const QString &value)
{
    d->fields.set(name, value);
}

void QMailFolder::setCustomFields(const QMap<QString, QString> &fields)
{
    d->fields.replace(fields);
}

void QMailFolder::removeCustomField(const QString &name)
{
    d->fields.remove(name);
}

const QMap<QString, QString> &QMailFolder::customFields() const
{
    return d->fields.values;
}
