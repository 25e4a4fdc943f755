// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactitemplan.h"

using ContactCases::Action;
using ContactCases::Moment;

ContactItemPlan::ContactItemPlan(const ContactFolderState &state, const QList<EasContactsItem> &added,
    const QList<EasContactsItem> &changed, const QStringList &deleted)
{
    for (const EasContactsItem &item : added)
        enter(state, item);
    for (const EasContactsItem &item : changed) {
        if (!state.rows.hasServerId(item.serverId()))
            mUnknown.append(item.serverId());
        enter(state, item);
    }
    for (const QString &serverId : deleted)
        remove(state, serverId);
}

void ContactItemPlan::enter(const ContactFolderState &state, const EasContactsItem &item)
{
    if (!item.localId().isEmpty())
        mAcknowledged.insert(item.serverId(), item.localId());
    const auto place = mPlaces.constFind(item.serverId());
    if (place != mPlaces.constEnd()) {
        mEntries[*place] = entryOf(state, item);
        return;
    }
    mPlaces.insert(item.serverId(), mEntries.size());
    mEntries.append(entryOf(state, item));
}

ContactItemPlan::Entry ContactItemPlan::entryOf(const ContactFolderState &state, EasContactsItem item) const
{
    const QString serverId = item.serverId();
    Entry entry;
    if (state.rows.hasServerId(serverId)) {
        const QString localId = state.rows.localId(serverId);
        entry.hasRow = true;
        item.setLocalId(state.collectionIsNew ? QString() : localId);
        item.setAvatarUrl(state.rows.avatar(localId));
    } else if (mAcknowledged.contains(serverId)) {
        item.setLocalId(mAcknowledged.value(serverId));
    } else if (state.strays.contains(serverId)) {
        const ContactFolderState::Stray stray = state.strays.value(serverId);
        entry.isStored =
            ContactCases::action(Moment::Named, { true, false, stray.isEdited }) == Action::Overwrite;
        item.setLocalId(stray.localId);
        item.setAvatarUrl(entry.isStored ? QUrl() : stray.avatar);
    }
    entry.item = item;
    return entry;
}

void ContactItemPlan::remove(const ContactFolderState &state, const QString &serverId)
{
    const QString localId = state.rows.hasServerId(serverId) ? state.rows.localId(serverId)
                                                             : state.strays.value(serverId).localId;
    if (localId.isEmpty())
        mUnknown.append(serverId);
    else
        mDeletions.append({ serverId, localId, state.rows.avatar(localId) });
}
