// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "storages/localquery.h"

#include <QList>
#include <QObject>
#include <QStringList>

class EasContactsItem;
class EasFolderItem;
class UploadBudget;

/**
 * The device's contact store as the requests see it: contact folders and contacts of one account.
 *
 * An account owns its storage and hands it out as a shared pointer. Operations return false after they have
 * logged what went wrong. Main thread only.
 */
class ContactStorage : public QObject
{
    Q_OBJECT

public:
    explicit ContactStorage(QObject *parent);
    ~ContactStorage() override;

    virtual bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) = 0;
    /**
     * The lists leave as the rows of the mapping, those to be added and those to be changed. An added item
     * that comes with a local identifier is that contact: the same reply acknowledges its upload.
     */
    virtual bool updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
        QList<EasContactsItem> &changed, const QStringList &deleted) = 0;
    virtual bool cleanUpFolder(const EasFolderItem &folder) = 0;
    /** With a budget, what does not fit is left out before it is read. */
    virtual LocalQuery queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
        QList<EasContactsItem> *changed, QStringList *deletedServerIds, UploadBudget *budget = nullptr) = 0;
    virtual bool uploadedLocalChanges(const QStringList &addedLocalIds, const QStringList &changedLocalIds,
        const QStringList &deletedLocalIds) = 0;
    virtual void setFailedLocalChangesIds(const QStringList &localIds) = 0;

    /** The server will send the folder from its beginning: what it has not named until allReceived() is gone
     * there. */
    virtual bool expectAll(const EasFolderItem &folder) = 0;
    /** The replies that are stored and mapped hold everything that the server has to send of the folder. */
    virtual bool allReceived(const QString &folderServerId) = 0;
    /** The server has left the folder out of a reply: nothing of it has changed. A folder that is sent anew
     * is not taken for empty by that. */
    virtual bool unchanged(const QString &folderServerId) = 0;

public Q_SLOTS:
    virtual void onSyncCompleted(EasAccountId accountId, qulonglong requestId, int status) = 0;

Q_SIGNALS:
    void changesAvailable(const QStringList &changedLocalFolderIds);
};
