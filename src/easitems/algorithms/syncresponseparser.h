// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/syncitemparser.h"
#include "protocol/elements/synccollection.h"
#include "protocol/wbxml/wbxmlparserbase.h"

/**
 * Reads the reply of a Sync into collections with typed items, whose data is read by a SyncItemParser.
 *
 * An empty reply is ready at once, with status 0 and no collections: nothing has changed.
 */
class SyncResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit SyncResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** Of the whole reply; collections and items have their own. */
    uint status() const { return mStatus; }
    /** The most collections, or the longest wait, that the server takes. */
    int limit() const { return mLimit; }
    QList<SyncCollection> collections() const { return mCollections; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum ParsePhase { BeforeRoot = 0, SyncLevel = 1, InCollection = 2, InResponses = 3, Done = 5 };
    enum CommandKind {
        NoKind = 0,
        AddKind = 1,
        ChangeKind = 2,
        FetchKind = 3,
        DeleteKind = 4,
        SoftDeleteKind = 5
    };

    /** Whether this is the status that some replies consist of, in the form of another command. */
    bool isRootStatus(uint codePage, uint token) const;
    void startAirSyncElement(uint token);
    void endAirSyncElement(uint token);
    void startCommand(CommandKind kind);
    void endCommand(CommandKind kind);
    void airSyncContent(uint token, const QString &text);
    void serverIdContent(const QString &serverId);
    void statusContent(const QString &text);
    void classContent(const QString &itemClass);
    void limitContent(const QString &text);

    QString itemServerId() const;
    SyncItemParser::Use use() const;
    void takeItem();
    void takeDeletion();

    ParsePhase mParsePhase = BeforeRoot;
    CommandKind mCommandKind = NoKind;
    uint mStatus = 0;
    int mLimit = 0;
    bool mInAppData = false;
    QString mCurrentServerId;
    QList<SyncCollection> mCollections;
    SyncCollection mCurrentCollection;
    AirSyncResponseDeleteItem mCurrentDelete;
    AirSyncResponseChangeItem mCurrentChange;
    AirSyncResponseAddItem mCurrentAdd;
    SyncItemParser mItem;
};
