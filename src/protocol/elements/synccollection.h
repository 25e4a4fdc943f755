// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "easitems/airsyncresponseadditem.h"
#include "easitems/airsyncresponsechangeitem.h"
#include "easitems/airsyncresponsedeleteitem.h"
#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/asprotocolitem.h"

#include <QList>
#include <QSharedPointer>
#include <QStringList>

class AirSyncOptions;
class SyncCommandBase;

/**
 * One folder in one Sync: what is asked of the server, or what it answered.
 *
 * It is copied like a value, with its options and lists; only the upload commands are shared by the copies.
 * Two collections are equal if they are the same folder. The append operations of the results give each item
 * its server identifier and its folder.
 */
class SyncCollection : public AsProtocolItem
{
    Q_OBJECT

public:
    explicit SyncCollection(QObject *parent = nullptr);
    SyncCollection(const SyncCollection &other);
    SyncCollection &operator=(const SyncCollection &other);
    ~SyncCollection() override;

    bool operator==(const SyncCollection &other) const { return id() == other.id(); }
    bool operator!=(const SyncCollection &other) const { return !(*this == other); }

    void clear();

    // What is asked
    AirSyncOptions *options() const { return mOptions.data(); }
    /** Takes ownership; options that were set before are deleted. */
    void setOptions(AirSyncOptions *options);
    QString id() const { return mValues.id; }
    void setId(const QString &id) { mValues.id = id; }
    QString localId() const { return mValues.localId; }
    void setLocalId(const QString &localId) { mValues.localId = localId; }
    QString getClass() const { return mValues.itemClass; }
    void setClass(const QString &itemClass) { mValues.itemClass = itemClass; }
    QString syncKey() const { return mValues.syncKey; }
    void setSyncKey(const QString &syncKey) { mValues.syncKey = syncKey; }
    uint windowSize() const { return mValues.windowSize; }
    void setWindowSize(uint windowSize) { mValues.windowSize = windowSize; }
    uint status() const { return mValues.status; }
    void setStatus(uint status) { mValues.status = status; }
    /** Of a calendar: the time up to which local changes were collected. */
    qint64 queryTime() const { return mValues.queryTime; }
    void setQueryTime(qint64 queryTime) { mValues.queryTime = queryTime; }
    bool getChanges() const { return mValues.getChanges; }
    void setGetChanges(bool getChanges) { mValues.getChanges = getChanges; }
    bool deletesAsMoves() const { return mValues.deletesAsMoves; }
    void setDeletesAsMoves(bool deletesAsMoves) { mValues.deletesAsMoves = deletesAsMoves; }
    bool conversationMode() const { return mValues.conversationMode; }
    void setConversationMode(bool conversationMode) { mValues.conversationMode = conversationMode; }
    bool moreAvailable() const { return mValues.moreAvailable; }
    void setMoreAvailable(bool moreAvailable) { mValues.moreAvailable = moreAvailable; }

    QList<QSharedPointer<SyncCommandBase>> commands() const { return mValues.commands; }
    /** Takes ownership. */
    void appendCommand(SyncCommandBase *command);
    void appendCommands(const QList<QSharedPointer<SyncCommandBase>> &commands);

    using AsProtocolItem::encode;
    virtual void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

    // What the server answered
    QList<EasEmailItem> addedEmails() const { return mValues.addedEmails; }
    QList<EasEmailItem> changedEmails() const { return mValues.changedEmails; }
    QList<EasEmailItem> fetchedEmails() const { return mValues.fetchedEmails; }
    QList<EasCalendarItem> addedCalendarItems() const { return mValues.addedCalendarItems; }
    QList<EasCalendarItem> changedCalendarItems() const { return mValues.changedCalendarItems; }
    QList<EasCalendarItem> fetchedCalendars() const { return mValues.fetchedCalendars; }
    QList<EasContactsItem> addedContacts() const { return mValues.addedContacts; }
    QList<EasContactsItem> changedContacts() const { return mValues.changedContacts; }
    QList<EasContactsItem> fetchedContacts() const { return mValues.fetchedContacts; }
    QStringList deletedIds() const { return mValues.deletedIds; }
    QList<AirSyncResponseAddItem> getAddCmdResponses() const { return mValues.addResponses; }
    QList<AirSyncResponseChangeItem> getChangeCmdResponses() const { return mValues.changeResponses; }
    QList<AirSyncResponseDeleteItem> getDeleteCmdResponses() const { return mValues.deleteResponses; }

    void appendAddedEmails(const EasEmailItem &item, const QString &serverId);
    /** Also marks folder and server identifier as changed fields. */
    void appendChangedEmails(const EasEmailItem &item, const QString &serverId);
    void appendFetchedEmails(const EasEmailItem &item, const QString &serverId);
    /** Also stamps the item as created just before the query of local changes. */
    void appendAddedCalendars(const EasCalendarItem &item, const QString &serverId);
    void appendChangedCalendars(const EasCalendarItem &item, const QString &serverId);
    void appendFetchedCalendars(const EasCalendarItem &item, const QString &serverId);
    void appendAddedContacts(const EasContactsItem &item, const QString &serverId);
    void appendChangedContacts(const EasContactsItem &item, const QString &serverId);
    void appendFetchedContacts(const EasContactsItem &item, const QString &serverId);
    void appendDeletedIds(const QString &serverId);
    void appendAirSyncResponseAddedItem(const AirSyncResponseAddItem &item);
    void appendAirSyncResponseChangedItem(const AirSyncResponseChangeItem &item);
    void appendAirSyncResponseDeletedItem(const AirSyncResponseDeleteItem &item);

private:
    struct Values
    {
        QString id;
        QString localId;
        QString itemClass;
        QString syncKey;
        uint windowSize = 0;
        uint status = 0;
        qint64 queryTime = 0;
        bool getChanges = false;
        bool deletesAsMoves = true;
        bool conversationMode = false;
        bool moreAvailable = false;
        QList<QSharedPointer<SyncCommandBase>> commands;
        QList<EasEmailItem> addedEmails;
        QList<EasEmailItem> changedEmails;
        QList<EasEmailItem> fetchedEmails;
        QStringList deletedIds;
        QList<EasCalendarItem> addedCalendarItems;
        QList<EasCalendarItem> changedCalendarItems;
        QList<EasCalendarItem> fetchedCalendars;
        QList<EasContactsItem> addedContacts;
        QList<EasContactsItem> changedContacts;
        QList<EasContactsItem> fetchedContacts;
        QList<AirSyncResponseAddItem> addResponses;
        QList<AirSyncResponseChangeItem> changeResponses;
        QList<AirSyncResponseDeleteItem> deleteResponses;
    };

    template <class Item> void append(QList<Item> &list, Item item, const QString &serverId) const;
    bool isInitial() const;
    void encodeBeyondInitial(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

    Values mValues;
    QSharedPointer<AirSyncOptions> mOptions;
};
