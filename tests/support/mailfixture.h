// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"
#include "storages/calendarstorage.h"
#include "storages/mail/mailstorecontext.h"
#include "support/fakeaccount.h"

#include <qmailmessage.h>
#include <qmailstore.h>

#include <QMap>

/** A calendar that answers the question for the data of a meeting with a fixed text. */
class FakeCalendarStorage : public CalendarStorage
{
public:
    explicit FakeCalendarStorage(const QByteArray &iCalendar);

    void init() override {}
    bool updateFolders(QList<EasFolderItem> &, QList<EasFolderItem> &, const QStringList &) override;
    bool updateItems(
        QList<EasCalendarItem> &, QList<EasCalendarItem> &, const QStringList &, QStringList &) override;
    bool touchItems(const QString &, const QList<QPair<QString, QString>> &) override { return true; }
    LocalQuery queryLocalUpdates(const QString &, qint64, qint64 &, QList<EasCalendarItem> &,
        QList<EasCalendarItem> &, QStringList &, UploadBudget *) override;
    bool syncTime(const QString &, qint64 &) override { return true; }
    bool setSyncTime(const QString &, qint64) override { return true; }
    bool cleanUpFolder(const EasFolderItem &) override { return true; }
    bool uploadedLocalChanges(
        QList<EasCalendarItem> &, QList<EasCalendarItem> &, const QStringList &) override;
    QString formatTime(const QDateTime &) const override { return {}; }
    QString encodeMeetingResponse(const QString &requestData, EasItemsCommon::UserResponseType response,
        bool allowMissingMethod, const QDateTime &occurrence) const override;
    QString getEventIcal(const QString &localId, const QDateTime &occurrence) const override;
    QString instanceId(const QString &, const QDateTime &) const override { return {}; }
    QString fileReferenceForAttachment(const QString &) const override { return QString(); }
    int estimatedDataSizeForAttachment(const QString &) const override { return 0; }
    bool updateAttachmentForEvent(const QByteArray &, const QString &) override { return true; }
    bool initStorage() override { return true; }
    QByteArray iTIPRequestData(
        const EasMeetingRequestContainer &, const QString &subject, const QString &text) override;

    /** As the last invitation had them. */
    QString organizer;
    QString summary;
    QString description;
    /** The iCalendar data of events, by their local identifiers. */
    QMap<QString, QString> events;
    /** Invitations are none to it. */
    bool refusesToAnswer = false;

private:
    QByteArray mICalendar;
};

/**
 * A mail account of its own in the store, with an Exchange account beside it and rows in the mapping
 * database.
 *
 * Each fixture takes a fresh number, so that tests of one process do not see each other's mail.
 */
class MailFixture
{
public:
    MailFixture();
    ~MailFixture();
    Q_DISABLE_COPY(MailFixture)

    EasAccountId accountId() const { return account.id(); }
    QMailAccountId mailAccountId() const { return context.mailAccountId; }

    /** A folder in store and mapping. */
    QMailFolderId addFolder(const QString &serverId,
        EasFolderItem::FolderType type = EasFolderItem::UserCreatedMailFolder,
        const QMailFolderId &parent = QMailFolderId());
    /** A folder that the server does not know. */
    QMailFolderId addStoreFolder(
        const QString &name, const QMailFolderId &parent = QMailFolderId(), quint64 status = 0);

    /** An item as a reply brings it: in this collection and, for what looks no further, its folder. */
    EasEmailItem item(const QString &serverId, const QString &collectionId) const;
    static EasBodyContainer body(EasBodyContainer::BodyType type, const QString &data);
    static EasAttachmentContainer attachment(
        const QString &name, const QString &reference, int size, bool isInline = false);

    /** The message of an item, stored and mapped. */
    QMailMessageId addMessage(const EasEmailItem &item);
    /** A message of the user's that waits to be sent. */
    QMailMessageId addUnsent(const QMailFolderId &folder);
    void map(const EasEmailItem &item, const QMailMessageId &id);

    QMailMessage message(const QMailMessageId &id) const;
    QMailMessage message(const QString &serverUid) const;
    int messageCount() const;
    /** Adds or removes status bits as a mail application does. */
    void setStatus(const QMailMessageId &id, quint64 mask, bool set) const;

    FakeAccount account;
    QSharedPointer<FakeCalendarStorage> calendar;
    MailStoreContext context;
};
