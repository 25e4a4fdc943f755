// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <qmailmessage.h>

#include <optional>

struct MailStoreContext;
class EasEmailItem;

/**
 * What mapping and mail store together know of the messages that a reply adds.
 *
 * The store is written before the mapping and the sync key last, so that an interrupted run leaves messages
 * without rows, moves that one side knows, and replies that come again. All cases stand in this one table; a
 * message is known by its folder and its identifier there:
 *
 * | row         | message in the store         | removal record   | finding |
 * | ----------- | ---------------------------- | ---------------- | ------- |
 * | none        | none                         | none             | New |
 * | none        | none                         | of this folder   | RemovedHere |
 * | none        | any                          |                  | LeftBehind |
 * | here        | any                          |                  | Known |
 * | here        | none                         | of any folder    | RemovedHere |
 * | here        | none                         | none             | Lost |
 * | elsewhere   | none                         |                  | New |
 * | elsewhere   | here, moved away, search hit |                  | LeftBehind |
 * | elsewhere   | elsewhere                    |                  | TakenByAnother |
 *
 * A value of the moment: it holds what was read, not what is written after that. Main thread only.
 */
class MailRecognition
{
public:
    enum Finding {
        /** Both sides know nothing of it. */
        New,
        /** The user has removed it, and the server is still to be told. */
        RemovedHere,
        /** An interrupted run has stored it; it has no row. A search may have found it, too. */
        LeftBehind,
        /** It is in store and mapping. */
        Known,
        /** It has a row, but is in the store no more. */
        Lost,
        /** The store knows another message by this identifier. */
        TakenByAnother,
    };

    /** Looks the items up together; nothing if the mapping could not be read. */
    static std::optional<MailRecognition> of(
        const MailStoreContext &context, const QList<EasEmailItem> &items);

    Finding finding(const EasEmailItem &item) const;
    /** The message of the store that has this identifier; an invalid one without. */
    QMailMessageMetaData stored(const QString &serverUid) const;

    /**
     * Messages that came from the server and have no row; nothing if the mapping could not be read. The sync
     * key was not advanced for them, so that the server sends them again, or has deleted them meanwhile.
     */
    static std::optional<QMailMessageIdList> leftBehind(const MailStoreContext &context);

    /**
     * What the user has removed and the server still has: identifiers with their collections; nothing if the
     * mapping could not be read.
     */
    static std::optional<QMap<QString, QString>> removedHere(const MailStoreContext &context);

    /**
     * Identifiers of removal records that tell of no message any more: their folder is gone, or was the
     * store's own, and they have no row, or what has their row is in the store. Nothing if the mapping could
     * not be read.
     */
    static std::optional<QStringList> staleRemovals(const MailStoreContext &context);

private:
    explicit MailRecognition(const MailStoreContext &context);

    /** Of all removal records; nothing if the mapping could not be read. */
    static std::optional<MailRecognition> ofRemovals(const MailStoreContext &context);

    bool readRows(const QStringList &serverUids);
    void readStore(const QStringList &serverUids);
    void readRemovals();
    bool isStored(const QString &serverUid) const;

    const MailStoreContext *mContext;
    QMap<QString, QString> mCollections;
    QMap<QString, QString> mLocalIds;
    QHash<QString, QMailMessageMetaData> mStored;
    /** By identifier: the folders in which the user has removed such a message. */
    QHash<QString, QSet<quint64>> mRemovals;
};
