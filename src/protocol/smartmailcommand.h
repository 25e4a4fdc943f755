// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/composemailcommand.h"

#include <QDateTime>

/**
 * What SmartReply and SmartForward share: the device sends the new text alone, and the server adds the
 * message that is answered or forwarded, the source. The text is the same with each start().
 */
class SmartMailCommand : public ComposeMailCommand
{
    Q_OBJECT

protected:
    /** With `replaceMime` the server adds nothing. */
    SmartMailCommand(EasAccountId accountId, QObject *parent, quint64 messageId, const QByteArray &mime,
        bool saveInSent, bool replaceMime);

    /** The source by its folder; the instance is an occurrence of a series, or invalid. */
    void setSource(const QString &collectionId, const QString &itemId, const QDateTime &instanceId);
    /** The source by the identifier that a search gave it. */
    void setSource(const QString &longId) { mLongId = longId; }

    QByteArray mime(EasAccount &account) const override;
    void encodeOptions(WbxmlEncoder &encoder) const override;
    void configureCommandSpecificQueryValues(QUrlQuery &query) override;

private:
    const QByteArray mMime;
    const bool mReplaceMime;
    QString mCollectionId;
    QString mItemId;
    QDateTime mInstanceId;
    QString mLongId;
};
