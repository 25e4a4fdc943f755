// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"
#include "protocol/baseprotocolcommand.h"

#include <QList>
#include <QStringList>

/**
 * One FolderSync: what changed in the account's folders since a key.
 *
 * Needs a key ("0" asks for everything). After a reply syncKey() is the server's new key, or still the one
 * that was sent if the reply holds none.
 */
class FolderSyncCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    explicit FolderSyncCommand(EasAccountId accountId, QObject *parent = nullptr);

    QString syncKey() const { return mSyncKey; }
    void setSyncKey(const QString &syncKey) { mSyncKey = syncKey; }
    QList<EasFolderItem> addedItems() const { return mAddedItems; }
    QList<EasFolderItem> updatedItems() const { return mUpdatedItems; }
    /** Server identifiers. */
    QStringList deletedItems() const { return mDeletedItems; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    QString mSyncKey;
    QList<EasFolderItem> mAddedItems;
    QList<EasFolderItem> mUpdatedItems;
    QStringList mDeletedItems;
};
