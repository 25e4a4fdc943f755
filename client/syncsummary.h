// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QStringList>

class CommandContext;
class DaemonRequest;

/**
 * What a sync has changed on the device: the items of each account before and after it, compared. On the
 * stack of the command.
 */
class SyncSummary
{
public:
    explicit SyncSummary(CommandContext &context);

    /** Before the request of the account is started. */
    void begin(EasAccountId account);
    /** After its end. */
    void end(const DaemonRequest &request);
    void print();

private:
    /** What changes with each change of an item, by the item's identifier. */
    using Items = QHash<QString, QString>;
    /** By kind: "mail", "calendar" or "contacts". */
    using Kinds = QMap<QString, Items>;

    Kinds itemsOf(EasAccountId account) const;
    static QJsonObject difference(const Items &before, const Items &after);
    /** Empty if nothing has changed. */
    static QString sentence(const QJsonObject &counts);

    CommandContext &mContext;
    QElapsedTimer mTimer;
    QMap<EasAccountId, Kinds> mBefore;
    QJsonArray mAccounts;
    QStringList mSentences;
};
