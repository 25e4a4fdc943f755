// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/pingfolders.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/calendaraccountconfiguration.h"
#include "configurations/contactsaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "storages/mailstorage.h"

#include <algorithm>

PingFolders::PingFolders(EasAccount &account)
    : mAccount(account)
{
}

Lookup<QList<PingFolderItem>> PingFolders::getDefaultSynchronizedFolders(bool allFolders)
{
    mFolders.clear();
    return appendServices(allFolders) ? Lookup<QList<PingFolderItem>>(mFolders)
                                      : Lookup<QList<PingFolderItem>>::unread();
}

bool PingFolders::appendServices(bool allFolders)
{
    const auto email = mAccount.emailConfiguration();
    if (!email) {
        qCWarning(eas()) << "emailConfig is null";
        return true;
    }
    if (email->enabled() && !appendMail(allFolders))
        return false;

    const auto calendar = mAccount.calendarConfiguration();
    if (!calendar) {
        qCWarning(eas()) << "calendarConfig is null";
        return true;
    }
    if (calendar->enabled()
        && !(appendFirst(EasFolderItem::DefaultCalendarFolder, PingFolderItem::Calendar)
            && (!allFolders
                || appendAll(EasFolderItem::UserCreatedCalendarFolder, PingFolderItem::Calendar))))
        return false;

    const auto contacts = mAccount.contactsConfiguration();
    if (!contacts) {
        qCWarning(eas()) << "contactsConfig is null";
        return true;
    }
    return !contacts->enabled()
        || (appendFirst(EasFolderItem::DefaultContactsFolder, PingFolderItem::Contacts)
            && (!allFolders
                || appendAll(EasFolderItem::UserCreatedContactsFolder, PingFolderItem::Contacts)));
}

bool PingFolders::appendMail(bool allFolders)
{
    const auto mail = mAccount.mailStorage();
    if (!allFolders || !mail || !mail->initialized())
        return appendFirst(EasFolderItem::DefaultInboxFolder, PingFolderItem::Email)
            && appendFirst(EasFolderItem::DefaultDeletedItemsFolder, PingFolderItem::Email);
    const Lookup<QList<EasFolderItem>> folders = mail->foldersToSynchronize();
    if (!folders)
        return false;
    for (const EasFolderItem &folder : *folders)
        append(folder.serverId(), PingFolderItem::Email);
    return true;
}

bool PingFolders::appendFirst(EasFolderItem::FolderType type, PingFolderItem::ClassId classId)
{
    const auto folders = EasDatabase::instance()->folderItemsByFolderType(mAccount.id(), type);
    if (folders)
        append(folders->value(0).serverId(), classId);
    return bool(folders);
}

bool PingFolders::appendAll(EasFolderItem::FolderType type, PingFolderItem::ClassId classId)
{
    const auto folders = EasDatabase::instance()->folderItemsByFolderType(mAccount.id(), type);
    if (!folders)
        return false;
    for (const EasFolderItem &folder : *folders)
        append(folder.serverId(), classId);
    return true;
}

void PingFolders::append(const QString &serverId, PingFolderItem::ClassId classId)
{
    const bool isKnown = std::any_of(mFolders.cbegin(), mFolders.cend(),
        [&serverId](const PingFolderItem &folder) { return folder.id() == serverId; });
    if (!serverId.isEmpty() && !isKnown)
        mFolders.append(PingFolderItem(serverId, classId));
}
