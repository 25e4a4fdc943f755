// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstorecontext.h"

#include "application/base/logging.h"

#include <qtcontacts-extensions.h>

QTCONTACTS_USE_NAMESPACE

QString ContactStoreContext::applicationName()
{
    return QStringLiteral("fennel-eas");
}

QtContactsSqliteExtensions::ContactManagerEngine *ContactStoreContext::engine() const
{
    return manager ? QtContactsSqliteExtensions::contactManagerEngine(*manager) : nullptr;
}

QContactCollectionFilter ContactStoreContext::contactsOf(const QContactCollection &collection)
{
    QContactCollectionFilter filter;
    filter.setCollectionId(collection.id());
    return filter;
}

bool ContactStoreContext::read(const QContactId &id, QContact *contact) const
{
    *contact = manager->contact(id);
    const QContactManager::Error error = manager->error();
    if (error == QContactManager::NoError || error == QContactManager::DoesNotExistError)
        return true;
    qCCritical(eas()) << "failed to read contact" << id << error;
    return false;
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
