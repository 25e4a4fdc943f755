// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/oofmessageitem.h"
#include "protocol/base/eas.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QDateTime>
#include <QList>

/**
 * Reads the out-of-office part of a reply to Settings. It is ready only behind the end of the root: an empty
 * reply is no answer. A reply with more answers than there are groups of senders, over and over, is refused.
 */
class OofResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit OofResponseParser(QObject *parent = nullptr);

    enum SettingsState { BeforeSettings = 0, InSettings = 1, InOof = 2, InGet = 3, AfterSettings = 4 };

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** An Eas::SettingsStatus or a status of all commands: of the command, or of its out-of-office part where
     * the command itself succeeded. */
    int status() const { return mStatus; }
    /** Whether the reply holds settings, and not a status alone. */
    bool hasSettings() const { return mHasSettings; }
    /** 0 off, 1 on, 2 on for a stretch of time. */
    int getOofState() const { return mOofState; }
    /** In UTC; invalid if the server named none. */
    QDateTime getOofStartTime() const { return mStartTime; }
    QDateTime getOofEndTime() const { return mEndTime; }
    QList<OofMessageItem> getOofResponseMessages() const { return mMessages; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    void takeStatus(int status);
    void appendMessage();

    SettingsState mSettingsState = BeforeSettings;
    int mStatus = Eas::SettingsStatusUndefined;
    bool mHasSettings = false;
    int mOofState = 0;
    QDateTime mStartTime;
    QDateTime mEndTime;
    OofMessageItem mMessage;
    QList<OofMessageItem> mMessages;
};
