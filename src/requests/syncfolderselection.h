// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"

#include <QList>
#include <QStringList>

class EasAccount;

/**
 * Which folders of an account a sync is about: those of chosen services, those named by the client, or the
 * default ones of all enabled services. A value on the stack; the account must outlive it. Main thread only.
 */
class SyncFolderSelection
{
public:
    /** Bits of a service mask, as clients give it. */
    enum Service { MailService = 1, CalendarService = 2, ContactsService = 4 };

    explicit SyncFolderSelection(EasAccount &account);

    /** Server identifiers, each once; service 0 means no mask, an empty list means the default folders. */
    QStringList serverIds(int service, const QStringList &localFolderIds);
    /** True if the database could not be read; then folders may be missing from what was returned. */
    bool lookupFailed() const { return mLookupFailed; }

private:
    QStringList namedFolders(const QStringList &localFolderIds);
    QList<EasFolderItem> getServiceSynchronizedFolders(int service);
    QList<EasFolderItem> getDefaultSynchronizedFolders();
    QList<EasFolderItem> enabledFolders(int service, bool warnDisabled);
    void appendMailFolders(QList<EasFolderItem> &folders);
    void appendFolders(
        QList<EasFolderItem> &folders, EasFolderItem::FolderType single, EasFolderItem::FolderType all);
    void appendSingleFolderByType(QList<EasFolderItem> &folders, EasFolderItem::FolderType type);
    void appendAllFoldersByType(QList<EasFolderItem> &folders, EasFolderItem::FolderType type);
    void noteLookup();

    EasAccount &mAccount;
    bool mLookupFailed = false;
};
