// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easgeneralitem.h"

#include <QMetaType>

/** One folder of an account: as the server announces it, and what the local store made of it. A plain value.
 */
class EasFolderItem : public EasGeneralItem
{
    Q_GADGET

public:
    enum FolderType : int {
        UserCreatedGenericFolder = 1,
        DefaultInboxFolder = 2,
        DefaultDraftsFolder = 3,
        DefaultDeletedItemsFolder = 4,
        DefaultSentItemsFolder = 5,
        DefaultOutboxFolder = 6,
        DefaultTasksFolder = 7,
        DefaultCalendarFolder = 8,
        DefaultContactsFolder = 9,
        DefaultNotesFolder = 10,
        DefaultJournalFolder = 11,
        UserCreatedMailFolder = 12,
        UserCreatedCalendarFolder = 13,
        UserCreatedContactsFolder = 14,
        UserCreatedTasksFolder = 15,
        UserCreatedJournalFolder = 16,
        UserCreatedNotesFolder = 17,
        UnknownFolder = 18,
        RecipientInformationCacheFolder = 19
    };
    Q_ENUM(FolderType)

    QString serverParentId() const { return mServerParentId; }
    void setServerParentId(const QString &serverParentId) { mServerParentId = serverParentId; }
    QString localParentId() const { return mLocalParentId; }
    void setLocalParentId(const QString &localParentId) { mLocalParentId = localParentId; }
    QString syncKey() const { return mSyncKey; }
    void setSyncKey(const QString &syncKey) { mSyncKey = syncKey; }
    QString displayName() const { return mDisplayName; }
    void setDisplayName(const QString &displayName) { mDisplayName = displayName; }
    FolderType type() const { return mType; }
    void setType(FolderType type) { mType = type; }
    bool savedInStorage() const { return mSavedInStorage; }
    void setSavedInStorage(bool savedInStorage) { mSavedInStorage = savedInStorage; }

    bool isEmail() const { return isEmailFolder(mType); }
    bool isCalendar() const { return mType == DefaultCalendarFolder || mType == UserCreatedCalendarFolder; }
    bool isContacts() const { return mType == DefaultContactsFolder || mType == UserCreatedContactsFolder; }

    /** Whether folders of this type stand in the mail store. An Outbox does, although it is never
     * synchronised. */
    static bool isEmailFolder(FolderType type);

    void clear() { *this = EasFolderItem(); }

private:
    QString mServerParentId;
    QString mLocalParentId;
    QString mSyncKey;
    QString mDisplayName;
    FolderType mType = UnknownFolder;
    bool mSavedInStorage = false;
};
