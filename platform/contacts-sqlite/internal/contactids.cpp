// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contactids.h"

#include <QtContacts/QContactManager>

QTCONTACTS_USE_NAMESPACE

namespace {

const char contactPrefix[] = "sql-";
const char collectionPrefix[] = "col-";

// Without the manager's parameters, so that identifiers are the same for all managers.
QString uri()
{
    static const QString text = QContactManager::buildUri(QLatin1String(ContactIds::managerName), {});
    return text;
}

template <typename Id> quint64 numberOf(const Id &id, const char *prefix)
{
    const QByteArray local = id.localId();
    if (id.managerUri() != uri() || !local.startsWith(prefix))
        return 0;
    return local.mid(int(qstrlen(prefix))).toULongLong();
}

} // namespace

QContactId ContactIds::contact(quint64 number)
{
    return QContactId(uri(), contactPrefix + QByteArray::number(number));
}

quint64 ContactIds::number(const QContactId &id)
{
    return numberOf(id, contactPrefix);
}

QContactCollectionId ContactIds::collection(quint64 number)
{
    return QContactCollectionId(uri(), collectionPrefix + QByteArray::number(number));
}

quint64 ContactIds::number(const QContactCollectionId &id)
{
    return numberOf(id, collectionPrefix);
}
