// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstrays.h"

#include "storages/contacts/contactstorecontext.h"

#include <qcontactstatusflags.h>

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactGuid>

QTCONTACTS_USE_NAMESPACE

ContactStrays::ContactStrays(const ContactStoreContext &context)
    : mContext(context)
{
}

bool ContactStrays::find(
    const QContactCollection &collection, const ContactFolderRows &rows, QList<QContact> *strays) const
{
    const QList<QContactId> ids = mContext.manager->contactIds(ContactStoreContext::contactsOf(collection));
    if (mContext.manager->error() != QContactManager::NoError)
        return false;
    for (const QContactId &id : ids) {
        if (rows.hasLocalId(id.toString()))
            continue;
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        if (!contact.id().isNull())
            strays->append(contact);
    }
    return true;
}

QMap<QString, ContactFolderState::Stray> ContactStrays::byServerId(const QList<QContact> &strays) const
{
    QMap<QString, ContactFolderState::Stray> map;
    for (const QContact &contact : strays) {
        const QString serverId = originOf(contact);
        if (!serverId.isEmpty())
            map.insert(serverId,
                { contact.id().toString(), isEdited(contact), contact.detail<QContactAvatar>().imageUrl() });
    }
    return map;
}

ContactCases::State ContactStrays::state(const QContact &contact, bool hasRow) const
{
    return { !originOf(contact).isEmpty(), hasRow, isEdited(contact) };
}

QString ContactStrays::originOf(const QContact &contact) const
{
    return mContext.serverIdOf(contact.detail<QContactGuid>().guid());
}

bool ContactStrays::isEdited(const QContact &contact)
{
    const auto flags = contact.detail<QContactStatusFlags>();
    return flags.testFlag(QContactStatusFlags::IsAdded) || flags.testFlag(QContactStatusFlags::IsModified);
}
