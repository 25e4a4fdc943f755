// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"
#include "storages/localquery.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPair>
#include <QStringList>

class EasCalendarItem;
class EasFolderItem;
class UploadBudget;

/**
 * The device's calendar store as the requests see it: calendar folders and events of one account.
 *
 * An account owns its storage and hands it out as a shared pointer. Operations return false after they have
 * logged what went wrong. Main thread only.
 */
class CalendarStorage : public QObject
{
    Q_OBJECT

public:
    explicit CalendarStorage(QObject *parent);
    ~CalendarStorage() override;

    /** Opens the store and follows the account's calendar settings. */
    virtual void init() = 0;

    virtual bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) = 0;

    /** Applies one reply; server identifiers whose events were made anew are appended to replaced. */
    virtual bool updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deleted, QStringList &replaced) = 0;

    /** Marks occurrences (pairs of series local id and occurrence start) as changed on the device. */
    virtual bool touchItems(
        const QString &folderServerId, const QList<QPair<QString, QString>> &instances) = 0;

    /** Local changes of a folder made from one time (seconds since the epoch) on; newTime is where the next
     * query starts. With a budget, what does not fit is left out before it is read. */
    virtual LocalQuery queryLocalUpdates(const QString &localFolderId, qint64 from, qint64 &newTime,
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, QStringList &deletedServerIds,
        UploadBudget *budget = nullptr) = 0;

    /** Seconds since the epoch up to which the folder's local changes are known to the server. */
    virtual bool syncTime(const QString &localFolderId, qint64 &time) = 0;
    virtual bool setSyncTime(const QString &localFolderId, qint64 time) = 0;

    virtual bool cleanUpFolder(const EasFolderItem &folder) = 0;
    virtual bool uploadedLocalChanges(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deletedServerIds) = 0;

    /** A time as the protocol writes it. */
    virtual QString formatTime(const QDateTime &time) const = 0;

    /** The iCalendar reply to an invitation, which asks for one by its method unless it is an event of the
     * store. Empty, with the reason in the log, for what is no invitation. With an occurrence the reply is
     * about that one alone. */
    virtual QString encodeMeetingResponse(const QString &requestData,
        EasItemsCommon::UserResponseType response, bool allowMissingMethod,
        const QDateTime &occurrence = {}) const = 0;

    /** iCalendar data for the meeting request of a mail, or an empty array. */
    virtual QByteArray iTIPRequestData(const class EasMeetingRequestContainer &request,
        const QString &summary, const QString &description) = 0;

    /** An event of the store, by its local identifier, as iCalendar; empty if there is none. With the
     * original start of an occurrence that is not as its series says, that occurrence. */
    virtual QString getEventIcal(const QString &localId, const QDateTime &occurrence = {}) const = 0;
    /** How the protocol names the occurrence of an event that starts then; empty if there is no such event.
     */
    virtual QString instanceId(const QString &localId, const QDateTime &start) const = 0;

    /** The server's reference of an attachment, by its URI; empty if it has none. */
    virtual QString fileReferenceForAttachment(const QString &uri) const = 0;
    virtual int estimatedDataSizeForAttachment(const QString &uri) const = 0;
    /** Stores the bytes of an attachment that were fetched. */
    virtual bool updateAttachmentForEvent(const QByteArray &data, const QString &uri) = 0;

    /** Opens the store, or opens it afresh. */
    virtual bool initStorage() = 0;

Q_SIGNALS:
    void changesAvailable(const QStringList &changedLocalFolderIds);
};
