// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/base/eas.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QStringList>

/** Reads the reply of a Ping. It is ready only behind the end of the root: an empty reply is no answer. */
class PingResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit PingResponseParser(QObject *parent = nullptr);

    enum PingState { BeforePing = 0, InPing = 1, AfterPing = 2 };

    bool ready() const override;
    void parse(const QByteArray &data) override;
    void reset();

    PingState state() const { return mPingState; }
    /** An Eas::PingResponseStatus, or a status of all commands. */
    int status() const { return mStatus; }
    /** Seconds; 0 if the server named none. */
    int heartbeatInterval() const { return mHeartbeatInterval; }
    /** 0 if the server named none. */
    int maxFolders() const { return mMaxFolders; }
    /** Server identifiers. */
    QStringList folders() const { return mFolders; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    PingState mPingState = BeforePing;
    int mStatus = Eas::PingStatusUndefined;
    int mHeartbeatInterval = 0;
    int mMaxFolders = 0;
    QStringList mFolders;
};
