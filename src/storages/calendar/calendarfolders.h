// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <notebook.h>

#include <QList>
#include <QMap>
#include <QStringList>

struct CalendarStoreContext;
class EasFolderItem;

/**
 * The calendar folders of an account as notebooks of the device's calendar.
 *
 * Items of other kinds of folders are passed over. A result that is applied again finds the notebooks of the
 * first time by the server identifier that they carry. Notebook objects are asked for each time: after a
 * change in the store the store does not know those from before. Main thread only.
 */
class CalendarFolders
{
public:
    explicit CalendarFolders(const CalendarStoreContext &context);

    /** Applies a result; on failure the notebooks that it added are taken out again. */
    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &updated, const QStringList &deleted);

    /** Makes the notebooks of folders that have none, and has their content sent anew. */
    bool repairFolders();

    /** Erases all events of a folder that came from the server or went there. */
    bool cleanUpFolder(const EasFolderItem &folder) const;

    /** Shows or hides all notebooks of the account. */
    void updateVisibilities(bool visible);

    /** Removes all notebooks of these accounts, with their events. */
    static bool removeNotebooks(const CalendarStoreContext &context, const QList<EasAccountId> &accountIds);

private:
    bool handleAddedFolders(QList<EasFolderItem> &items);
    bool handleUpdatedFolders(QList<EasFolderItem> &items);
    bool handleDeletedFolders(const QStringList &serverIds);
    bool createNotebook(EasFolderItem &item);
    bool renameNotebook(const EasFolderItem &item);
    bool removeNotebook(const QString &uid);
    void rollBackAddedFolderItems(QList<EasFolderItem> &items);
    mKCal::Notebook::Ptr presentNotebook(const EasFolderItem &item) const;
    bool isOwn(const mKCal::Notebook::Ptr &notebook) const;
    bool deleteEvent(const QString &localId) const;

    const CalendarStoreContext &mContext;
    /** What the latest result added, to be taken back if it fails. */
    QStringList mCreated;
};
