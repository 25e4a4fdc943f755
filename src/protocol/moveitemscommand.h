// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "protocol/elements/movecontainer.h"
#include "protocol/elements/moveitemsresponse.h"

#include <QList>

/** One MoveItems: moves messages between folders on the server. Needs at least one message. */
class MoveItemsCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    explicit MoveItemsCommand(EasAccountId accountId, QObject *parent = nullptr);

    QList<MoveContainer> moveItems() const { return mMoveItems; }
    void appendMoveItem(const MoveContainer &item) { mMoveItems.append(item); }
    void clearMoveItems() { mMoveItems.clear(); }
    QList<MoveItemsResponse> moveItemsResponses() const { return mMoveItemsResponses; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    QList<MoveContainer> mMoveItems;
    QList<MoveItemsResponse> mMoveItemsResponses;
};
