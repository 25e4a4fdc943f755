// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easbodycontainer.h"
#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"
#include "storages/mailstorage.h"
#include "support/stubfolders.h"

#include <QMap>

/** A mail store that knows the server identifiers of some messages and does nothing. */
class StubMailStorage : public MailStorage
{
public:
    StubMailStorage()
        : MailStorage(nullptr, nullptr)
    {
    }

    QMap<quint64, QString> serverUids;
    StubFolders folders;

    QString serverUidFromMessageId(quint64 messageId) override { return serverUids.value(messageId); }

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override
    {
        return folders.update(added, changed, deleted);
    }
    bool updateEmails(QList<EasEmailItem> &, QList<EasEmailItem> &, const QStringList &) override
    {
        return false;
    }
    bool addSearchResults(QList<EasEmailItem> &, QList<quint64> &) override { return false; }
    bool successfullyUpdatedEmails(QList<EasEmailItem> &) override { return false; }
    QList<EasEmailItem> addedEmails(const QString &) override { return {}; }
    QList<EasEmailItem> updatedEmails(const QString &) override { return {}; }
    QList<EasEmailItem> movedEmails() override { return {}; }
    QStringList deletedEmails(const QString &) override { return {}; }
    bool purgeDeletedEmails(const QStringList &) override { return false; }
    QList<EasFolderItem> addedFolders() override { return {}; }
    bool purgeAddedFolders() override { return false; }
    QStringList deletedFolders() override { return {}; }
    bool purgeDeletedFolders() override { return false; }
    bool deleteEmailsByLocalIds(const QList<quint64> &) override { return false; }
    EasEmailItem queryMessage(const QString &) override { return {}; }
    EasEmailItem smartQueryMessage(const QString &) override { return {}; }
    bool isReply(const QString &) const override { return false; }
    bool isForward(const QString &) const override { return false; }
    bool initialized() const override { return true; }
    bool updateMovedEmails(const QList<EasEmailItem> &) override { return false; }
    bool updateBodyPart(quint64, const EasBodyContainer &) override { return false; }
    bool updateMessagePart(
        quint64, const QString &, const QString &, const QByteArray &, const QString &) override
    {
        return false;
    }
    bool updateCalendarResponsePart(quint64, quint64, EasItemsCommon::UserResponseType) override
    {
        return false;
    }
    bool updateCalendarResponsePart(quint64, const QString &, EasItemsCommon::UserResponseType) override
    {
        return false;
    }
    QStringList queryAttachmentsLocations(quint64, bool) override { return {}; }
    bool isAttachmentDownloaded(quint64, const QString &) override { return false; }
    EasItemsCommon::TBoolean isAttachmentPart(quint64, const QString &) override
    {
        return EasItemsCommon::TUndefined;
    }
    QString fileReferenceFromLocation(quint64, const QString &) override { return {}; }
    int estimatedDataSizeFromLocation(quint64, const QString &) override { return 0; }
    void cleanUpFolder(const EasFolderItem &) override {}
    QList<EasFolderItem> foldersToSynchronize() override { return {}; }
};
