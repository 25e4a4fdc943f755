// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "protocol/elements/synccollection.h"

#include <QList>

/**
 * One Sync: any number of collections go up with their local changes, and the server's answer comes back.
 *
 * The collections of the answer carry the commands and the query time of the collections that were sent, so
 * that the results can be matched to the local changes. An empty reply means that nothing has changed.
 */
class SyncCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    explicit SyncCommand(EasAccountId accountId, QObject *parent = nullptr);

    void addCollection(const SyncCollection &collection);
    void addCollections(const QList<SyncCollection> &collections);
    void clearCollections();
    QList<SyncCollection> collections() const;
    QList<SyncCollection> responseCollections() const;

    /** Minutes that the server may wait for changes. */
    uint wait() const { return mWait; }
    void setWait(uint minutes) { mWait = minutes; }
    bool partial() const { return mPartial; }
    void setPartial(bool partial) { mPartial = partial; }
    uint windowSize() const { return mWindowSize; }
    void setWindowSize(uint windowSize) { mWindowSize = windowSize; }
    uint heartbeatInterval() const { return mHeartbeatInterval; }
    void setHeartbeatInterval(uint seconds) { mHeartbeatInterval = seconds; }

    /** The body for a protocol version. */
    QByteArray encodedBody(ExchangeActiveSync::ProtocolVersion version) const;

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    void joinSentCollections();

    uint mWait = 0;
    bool mPartial = false;
    uint mWindowSize = 0;
    uint mHeartbeatInterval = 0;
    QList<SyncCollection> mCollections;
    QList<SyncCollection> mResponseCollections;
};
