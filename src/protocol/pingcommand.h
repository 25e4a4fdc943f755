// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "protocol/elements/pingfolderitem.h"

#include <QList>
#include <QStringList>

/**
 * One Ping: has the server answer when something changes in the folders that it watches, at the latest after
 * the heartbeat.
 *
 * Without folders the server goes by those that it was told last. A server that says nothing for a minute
 * longer than the heartbeat is given up. After an answer heartbeatInterval(), maxFolders() and
 * responseFolders() are what the server said, which the caller replaces before another start().
 */
class PingCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    explicit PingCommand(EasAccountId accountId, QObject *parent = nullptr);

    /** Seconds; 0 or less lets the server decide, or after an answer that it named none. */
    int heartbeatInterval() const { return mHeartbeatInterval; }
    void setHeartbeatInterval(int seconds) { mHeartbeatInterval = seconds; }
    /** How many folders the server watches at most; 0 if it has not said. */
    int maxFolders() const { return mMaxFolders; }
    void setMaxFolders(int count) { mMaxFolders = count; }
    QList<PingFolderItem> folders() const { return mFolders; }
    void setFolders(const QList<PingFolderItem> &folders) { mFolders = folders; }
    /** Server identifiers of the folders that have changed. */
    QStringList responseFolders() const { return mResponseFolders; }
    void setResponseFolders(const QStringList &folders) { mResponseFolders = folders; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;
    int longestWait() const override;

private:
    int mHeartbeatInterval = 0;
    int mMaxFolders = 0;
    QList<PingFolderItem> mFolders;
    QStringList mResponseFolders;
};
