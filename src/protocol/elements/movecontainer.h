// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/asprotocolitem.h"

#include <QString>

/** One message that is to be moved between two folders. Copied like a value. */
class MoveContainer : public AsProtocolItem
{
    Q_OBJECT

public:
    explicit MoveContainer(QObject *parent = nullptr);
    MoveContainer(const QString &sourceMessageId, const QString &sourceFolderId,
        const QString &destinationFolderId, QObject *parent = nullptr);
    MoveContainer(const MoveContainer &other);
    MoveContainer &operator=(const MoveContainer &other);

    QString sourceMessageId() const { return mSourceMessageId; }
    void setSourceMessageId(const QString &id) { mSourceMessageId = id; }
    QString sourceFolderId() const { return mSourceFolderId; }
    void setSourceFolderId(const QString &id) { mSourceFolderId = id; }
    QString destinationFolderId() const { return mDestinationFolderId; }
    void setDestinationFolderId(const QString &id) { mDestinationFolderId = id; }

    void encode(WbxmlEncoder &encoder) const override;

private:
    QString mSourceMessageId;
    QString mSourceFolderId;
    QString mDestinationFolderId;
};
