// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/foldercommand.h"

/** Renames a folder or moves it below another one; "0" is the root. */
class FolderUpdateCommand : public FolderCommand
{
    Q_OBJECT

public:
    explicit FolderUpdateCommand(EasAccountId accountId, QObject *parent = nullptr);

    QString serverId() const { return mServerId; }
    void setServerId(const QString &serverId) { mServerId = serverId; }
    QString parentId() const { return mParentId; }
    void setParentId(const QString &parentId) { mParentId = parentId; }
    QString displayName() const { return mDisplayName; }
    void setDisplayName(const QString &displayName) { mDisplayName = displayName; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    void encodeFolder(WbxmlEncoder &encoder) const override;
    const char *refusal() const override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    QString mServerId;
    QString mParentId;
    QString mDisplayName;
};
