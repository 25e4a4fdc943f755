// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncfolderselection.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/calendaraccountconfiguration.h"
#include "configurations/contactsaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "storages/mailstorage.h"

SyncFolderSelection::SyncFolderSelection(EasAccount &account)
    : mAccount(account)
{
}

Lookup<QStringList> SyncFolderSelection::serverIds(int service, const QStringList &localFolderIds)
{
    if (service == 0 && !localFolderIds.isEmpty())
        return namedFolders(localFolderIds);

    const Lookup<Folders> folders =
        service != 0 ? getServiceSynchronizedFolders(service) : getDefaultSynchronizedFolders();
    if (!folders)
        return Lookup<QStringList>::unread();
    const char *reason = service != 0 ? "adding service synchronised folder for sync:"
                                      : "adding default synchronised folder for sync:";
    QStringList ids;
    for (const EasFolderItem &folder : *folders) {
        if (folder.serverId().isEmpty() || ids.contains(folder.serverId()))
            continue;
        qCDebug(eas()) << reason << folder.serverId();
        ids.append(folder.serverId());
    }
    return ids;
}

Lookup<QStringList> SyncFolderSelection::namedFolders(const QStringList &localFolderIds)
{
    QStringList ids;
    for (const QString &localId : localFolderIds) {
        const Lookup<EasFolderItem> folder =
            EasDatabase::instance()->folderItemByLocalId(mAccount.id(), localId);
        if (!folder)
            return Lookup<QStringList>::unread();
        if (folder->serverId().isEmpty() || folder->localId() != localId) {
            qCWarning(eas()) << "failed to find local folder id" << localId << "in Eas DB for account"
                             << mAccount.id();
            continue;
        }
        if (ids.contains(folder->serverId()))
            continue;
        qCDebug(eas()) << "adding local synchronised folder for sync:" << folder->serverId();
        ids.append(folder->serverId());
    }
    return ids;
}

Lookup<SyncFolderSelection::Folders> SyncFolderSelection::getServiceSynchronizedFolders(int service)
{
    return enabledFolders(service, true);
}

Lookup<SyncFolderSelection::Folders> SyncFolderSelection::getDefaultSynchronizedFolders()
{
    return enabledFolders(MailService | CalendarService | ContactsService, false);
}

Lookup<SyncFolderSelection::Folders> SyncFolderSelection::enabledFolders(int service, bool warnDisabled)
{
    Folders folders;
    const auto wanted = [service, warnDisabled](Service bit, bool enabled, const char *disabled) {
        if ((service & bit) && !enabled && warnDisabled)
            qCWarning(eas()) << disabled;
        return (service & bit) && enabled;
    };

    const auto email = mAccount.emailConfiguration();
    if (!email) {
        qCWarning(eas()) << "emailConfig is null";
        return folders;
    }
    if (wanted(MailService, email->enabled(), "Email service is disabled") && !appendMailFolders(folders))
        return Lookup<Folders>::unread();

    const auto calendar = mAccount.calendarConfiguration();
    if (!calendar) {
        qCWarning(eas()) << "calendarConfig is null";
        return folders;
    }
    if (wanted(CalendarService, calendar->enabled(), "Calendar service is disabled")
        && !appendFolders(
            folders, EasFolderItem::DefaultCalendarFolder, EasFolderItem::UserCreatedCalendarFolder))
        return Lookup<Folders>::unread();

    const auto contacts = mAccount.contactsConfiguration();
    if (!contacts) {
        qCWarning(eas()) << "contactsConfig is null";
        return folders;
    }
    if (wanted(ContactsService, contacts->enabled(), "Contacts service is disabled")
        && !appendFolders(
            folders, EasFolderItem::DefaultContactsFolder, EasFolderItem::UserCreatedContactsFolder))
        return Lookup<Folders>::unread();
    return folders;
}

bool SyncFolderSelection::appendMailFolders(Folders &folders)
{
    const QSharedPointer<MailStorage> mail = mAccount.mailStorage();
    if (!mail)
        return true;
    const Lookup<Folders> found = mail->foldersToSynchronize();
    if (found)
        folders.append(*found);
    return bool(found);
}

bool SyncFolderSelection::appendFolders(
    Folders &folders, EasFolderItem::FolderType single, EasFolderItem::FolderType all)
{
    return appendSingleFolderByType(folders, single) && appendAllFoldersByType(folders, all);
}

bool SyncFolderSelection::appendSingleFolderByType(Folders &folders, EasFolderItem::FolderType type)
{
    const Lookup<Folders> found = EasDatabase::instance()->folderItemsByFolderType(mAccount.id(), type);
    if (found)
        folders.append(found->value(0));
    return bool(found);
}

bool SyncFolderSelection::appendAllFoldersByType(Folders &folders, EasFolderItem::FolderType type)
{
    const Lookup<Folders> found = EasDatabase::instance()->folderItemsByFolderType(mAccount.id(), type);
    if (found)
        folders.append(*found);
    return bool(found);
}
