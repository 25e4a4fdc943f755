// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagerepair.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessagekey.h>

#include <QSet>

namespace MailMessageRepair {

int removeStrays(const MailStoreContext &context)
{
    const QMailMessageIdList ids =
        context.store->queryMessages(QMailMessageKey::parentAccountId(context.mailAccountId)
            & QMailMessageKey::serverUid(QString(), QMailDataComparator::NotEqual)
            & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Excludes));
    if (ids.isEmpty())
        return 0;
    EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> serverToLocal = database->serverToLocalEmailIds(context.accountId());
    if (database->lookupFailed())
        return 0;
    QSet<quint64> mapped;
    mapped.reserve(serverToLocal.size());
    for (const QString &localId : serverToLocal)
        mapped.insert(localId.toULongLong());

    QMailMessageIdList strays;
    for (const QMailMessageId &id : ids) {
        if (!mapped.contains(id.toULongLong()))
            strays.append(id);
    }
    if (strays.isEmpty())
        return 0;
    if (!context.store->removeMessages(QMailMessageKey::id(strays), QMailStore::NoRemovalRecord)) {
        qCWarning(eas()) << "failed to remove messages of an interrupted run:" << strays.size();
        return 0;
    }
    qCInfo(eas()) << "removed messages of an interrupted run:" << strays.size();
    return strays.size();
}

} // namespace MailMessageRepair
