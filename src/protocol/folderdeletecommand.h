// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/foldercommand.h"

/** Removes a folder with everything in it. */
class FolderDeleteCommand : public FolderCommand
{
    Q_OBJECT

public:
    explicit FolderDeleteCommand(EasAccountId accountId, QObject *parent = nullptr);

    QString serverId() const { return mServerId; }
    void setServerId(const QString &serverId) { mServerId = serverId; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    void encodeFolder(WbxmlEncoder &encoder) const override;
    const char *refusal() const override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    QString mServerId;
};
