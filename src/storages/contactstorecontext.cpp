// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contactstorecontext.h"

#include <qtcontacts-extensions.h>

QString ContactStoreContext::applicationName()
{
    return QStringLiteral("fennel-eas");
}

QtContactsSqliteExtensions::ContactManagerEngine *ContactStoreContext::engine() const
{
    return manager ? QtContactsSqliteExtensions::contactManagerEngine(*manager) : nullptr;
}

QString ContactStoreContext::guid(const QString &serverId) const
{
    return QStringLiteral("%1-").arg(accountId) + serverId;
}

QString ContactStoreContext::serverIdOf(const QString &guid) const
{
    const QString prefix = QStringLiteral("%1-").arg(accountId);
    return guid.startsWith(prefix) ? guid.mid(prefix.size()) : QString();
}
