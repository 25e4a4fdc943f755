// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"
#include "protocol/foldercommand.h"

/** Makes a folder of the user for mail, events or contacts below another one; "0" is the root. */
class FolderCreateCommand : public FolderCommand
{
    Q_OBJECT

public:
    explicit FolderCreateCommand(EasAccountId accountId, QObject *parent = nullptr);

    EasFolderItem::FolderType type() const { return mType; }
    void setType(EasFolderItem::FolderType type) { mType = type; }
    QString parentId() const { return mParentId; }
    void setParentId(const QString &parentId) { mParentId = parentId; }
    QString displayName() const { return mDisplayName; }
    void setDisplayName(const QString &displayName) { mDisplayName = displayName; }
    /** Of the new folder; known after the reply. */
    QString serverId() const { return mServerId; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    void encodeFolder(WbxmlEncoder &encoder) const override;
    const char *refusal() const override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    EasFolderItem::FolderType mType = EasFolderItem::UnknownFolder;
    QString mParentId;
    QString mDisplayName;
    QString mServerId;
};
