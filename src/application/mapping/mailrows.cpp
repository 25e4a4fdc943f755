// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/mailrows.h"

#include "application/base/logging.h"
#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasestatement.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"

using DatabaseColumns::column;

namespace {

const char CantQueryEmails[] = "can't execute emails table query. Error:";
const char CantUpdateEmails[] = "can't update email items for account";

const ItemTable Emails { "emails", CantQueryEmails, CantQueryEmails, CantQueryEmails,
    "can't delete email items for account" };

} // namespace

MailRows::MailRows(PreparedStatements &statements)
    : ItemRows(statements, Emails)
{
}

bool MailRows::add(EasAccountId accountId, const QList<EasEmailItem> &items) const
{
    if (items.isEmpty())
        return true;
    return DatabaseStatement::insertRows(statements(), QStringLiteral("INSERT INTO emails"),
        QStringLiteral("(NULL, %1, ?, ?, ?)").arg(accountId),
        { column(items, &EasEmailItem::serverId), column(items, &EasEmailItem::collectionId),
            column(items, &EasEmailItem::localId) },
        "can't add email items for account", accountId);
}

bool MailRows::update(EasAccountId accountId, const QList<EasEmailItem> &items) const
{
    for (const EasEmailItem &item : items) {
        if (!item.changedFields().contains(Wbxml::AirSync::CollectionId))
            continue;
        DatabaseStatement update(statements(),
            QStringLiteral("UPDATE emails SET collection_id=:folder WHERE server_id=:id"
                           " AND account_id=%1 AND collection_id<>:folder")
                .arg(accountId));
        // Replies name the folder of each message, which is the old one nearly always: nothing to write then.
        update.bind(QStringLiteral(":folder"), DatabaseColumns::stored(item.collectionId()))
            .bind(QStringLiteral(":id"), item.serverId());
        if (!update.run())
            return update.fail(CantUpdateEmails, accountId);
    }
    return true;
}

bool MailRows::updateMoved(EasAccountId accountId, const QList<EasEmailItem> &items) const
{
    if (items.isEmpty())
        return true;
    QVariantList rowIds;
    if (!selectMovedRows(accountId, items, &rowIds))
        return false;
    if (rowIds.size() != items.size()) {
        qCCritical(eas()) << "selected eas DB ids are not bind properly to email server ids"
                             "                                 for account"
                          << accountId << ". Check duplications in Eas DB";
        return false;
    }
    DatabaseStatement update(statements(),
        QStringLiteral("UPDATE emails SET server_id=?, collection_id=? WHERE account_id=%1 AND id=?")
            .arg(accountId));
    update.bindColumn(column(items, &EasEmailItem::serverId))
        .bindColumn(column(items, &EasEmailItem::collectionId))
        .bindColumn(rowIds);
    return update.runBatch() || update.fail(CantUpdateEmails, accountId);
}

bool MailRows::selectMovedRows(
    EasAccountId accountId, const QList<EasEmailItem> &items, QVariantList *rowIds) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT id FROM emails WHERE account_id=%1 AND server_id=?").arg(accountId));
    for (const EasEmailItem &item : items) {
        if (!select.bind(item.previousServerId()).run())
            return select.fail("can't select email items for account", accountId);
        while (select.next()) {
            bool isNumber = false;
            const qlonglong id = select.value(0).toLongLong(&isNumber);
            if (!isNumber) {
                qCCritical(eas()) << "can't get email id value from query. easDbId:" << select.value(0);
                return false;
            }
            rowIds->append(id);
        }
        if (select.failed())
            return select.fail("can't select email items for account", accountId);
    }
    return true;
}
