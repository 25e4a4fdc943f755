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

void SyncFolderSelection::noteLookup()
{
    mLookupFailed = mLookupFailed || EasDatabase::instance()->lookupFailed();
}

QStringList SyncFolderSelection::serverIds(int service, const QStringList &localFolderIds)
{
    if (service == 0 && !localFolderIds.isEmpty())
        return namedFolders(localFolderIds);

    QStringList ids;
    const QList<EasFolderItem> folders =
        service != 0 ? getServiceSynchronizedFolders(service) : getDefaultSynchronizedFolders();
    const char *reason = service != 0 ? "adding service synchronised folder for sync:"
                                      : "adding default synchronised folder for sync:";
    for (const EasFolderItem &folder : folders) {
        if (folder.serverId().isEmpty() || ids.contains(folder.serverId()))
            continue;
        qCDebug(eas()) << reason << folder.serverId();
        ids.append(folder.serverId());
    }
    return ids;
}

QStringList SyncFolderSelection::namedFolders(const QStringList &localFolderIds)
{
    QStringList ids;
    for (const QString &localId : localFolderIds) {
        const EasFolderItem folder = EasDatabase::instance()->folderItemByLocalId(mAccount.id(), localId);
        noteLookup();
        if (folder.serverId().isEmpty() || folder.localId() != localId) {
            qCWarning(eas()) << "failed to find local folder id" << localId << "in Eas DB for account"
                             << mAccount.id();
            continue;
        }
        if (ids.contains(folder.serverId()))
            continue;
        qCDebug(eas()) << "adding local synchronised folder for sync:" << folder.serverId();
        ids.append(folder.serverId());
    }
    return ids;
}

QList<EasFolderItem> SyncFolderSelection::getServiceSynchronizedFolders(int service)
{
    return enabledFolders(service, true);
}

QList<EasFolderItem> SyncFolderSelection::getDefaultSynchronizedFolders()
{
    return enabledFolders(MailService | CalendarService | ContactsService, false);
}

QList<EasFolderItem> SyncFolderSelection::enabledFolders(int service, bool warnDisabled)
{
    QList<EasFolderItem> folders;
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
    if (wanted(MailService, email->enabled(), "Email service is disabled"))
        appendMailFolders(folders);

    const auto calendar = mAccount.calendarConfiguration();
    if (!calendar) {
        qCWarning(eas()) << "calendarConfig is null";
        return folders;
    }
    if (wanted(CalendarService, calendar->enabled(), "Calendar service is disabled"))
        appendFolders(
            folders, EasFolderItem::DefaultCalendarFolder, EasFolderItem::UserCreatedCalendarFolder);

    const auto contacts = mAccount.contactsConfiguration();
    if (!contacts) {
        qCWarning(eas()) << "contactsConfig is null";
        return folders;
    }
    if (wanted(ContactsService, contacts->enabled(), "Contacts service is disabled"))
        appendFolders(
            folders, EasFolderItem::DefaultContactsFolder, EasFolderItem::UserCreatedContactsFolder);
    return folders;
}

void SyncFolderSelection::appendMailFolders(QList<EasFolderItem> &folders)
{
    if (const QSharedPointer<MailStorage> mail = mAccount.mailStorage()) {
        const auto synchronized = mail->foldersToSynchronize();
        if (synchronized)
            folders.append(*synchronized);
        else
            mLookupFailed = true;
        noteLookup();
    }
}

void SyncFolderSelection::appendFolders(
    QList<EasFolderItem> &folders, EasFolderItem::FolderType single, EasFolderItem::FolderType all)
{
    appendSingleFolderByType(folders, single);
    appendAllFoldersByType(folders, all);
}

void SyncFolderSelection::appendSingleFolderByType(
    QList<EasFolderItem> &folders, EasFolderItem::FolderType type)
{
    folders.append(
        EasDatabase::instance()->folderItemsByFolderType(mAccount.id(), type).valueOr({}).value(0));
    noteLookup();
}

void SyncFolderSelection::appendAllFoldersByType(
    QList<EasFolderItem> &folders, EasFolderItem::FolderType type)
{
    folders.append(EasDatabase::instance()->folderItemsByFolderType(mAccount.id(), type));
    noteLookup();
}
