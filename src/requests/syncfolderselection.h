// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
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

    /**
     * Server identifiers, each once; service 0 means no mask, an empty list means the default folders. Unread
     * if one of the folders could not be read.
     */
    Lookup<QStringList> serverIds(int service, const QStringList &localFolderIds);

private:
    using Folders = QList<EasFolderItem>;

    Lookup<QStringList> namedFolders(const QStringList &localFolderIds);
    Lookup<Folders> getServiceSynchronizedFolders(int service);
    Lookup<Folders> getDefaultSynchronizedFolders();
    Lookup<Folders> enabledFolders(int service, bool warnDisabled);
    // Each of these is false if it could not read its folders.
    bool appendMailFolders(Folders &folders);
    bool appendFolders(Folders &folders, EasFolderItem::FolderType single, EasFolderItem::FolderType all);
    bool appendSingleFolderByType(Folders &folders, EasFolderItem::FolderType type);
    bool appendAllFoldersByType(Folders &folders, EasFolderItem::FolderType type);

    EasAccount &mAccount;
};
