// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactrecovery.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactstorecontext.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactManager>

#include <QFileInfo>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE
using ContactCases::Action;
using ContactCases::Moment;

ContactRecovery::ContactRecovery(const ContactStoreContext &context)
    : mContext(context)
    , mFolders(context)
    , mStrays(context)
    , mStore(context)
{
}

void ContactRecovery::collect(
    Moment moment, const QContact &contact, const QString &serverId, Repairs *repairs) const
{
    QContactGuid guid = contact.detail<QContactGuid>();
    switch (ContactCases::action(moment, mStrays.state(contact, !serverId.isEmpty()))) {
    case Action::Remove:
        repairs->toRemove.append(contact.id());
        repairs->avatars.append(contact.detail<QContactAvatar>().imageUrl());
        return;
    case Action::Sign:
        guid.setGuid(mContext.guid(serverId));
        break;
    case Action::Disown:
        guid.setGuid(QString());
        break;
    default:
        return;
    }
    QContact changed = contact;
    changed.saveDetail(&guid, QContact::IgnoreAccessConstraints);
    repairs->toRewrite.append(changed);
}

bool ContactRecovery::carryOut(const QContactCollection &collection, const Repairs &repairs) const
{
    if (!repairs.toRemove.isEmpty())
        qCInfo(eas()) << "removing contacts that the server does not send any more:"
                      << repairs.toRemove.size();
    return mStore.rewrite(collection, repairs.toRewrite)
        && mStore.remove(collection, repairs.toRemove, repairs.avatars);
}

// At the start

void ContactRecovery::repair()
{
    bool complete = false;
    const QList<QContactCollection> collections = mFolders.collections(&complete);
    if (!complete)
        return;
    QList<QContactCollection> present;
    for (const QContactCollection &collection : collections) {
        if (!removeUnknownFolder(collection)) {
            complete = repairFolder(collection) && complete;
            present.append(collection);
        }
    }
    if (complete)
        removeOrphanedPictures(present);
}

bool ContactRecovery::removeUnknownFolder(const QContactCollection &collection) const
{
    const QString serverId = ContactFolders::serverIdOf(collection);
    const auto folder = EasDatabase::instance()->folderItemByServerId(mContext.accountId, serverId);
    if (!folder || folder->serverId() == serverId)
        return false;
    const QList<QContact> contacts = mContext.manager->contacts(ContactStoreContext::contactsOf(collection));
    if (mContext.manager->error() != QContactManager::NoError
        || std::any_of(contacts.cbegin(), contacts.cend(), ContactStrays::isEdited))
        return false;
    qCInfo(eas()) << "removing the contacts folder of an interrupted run:" << serverId;
    return mFolders.removeCollection(collection);
}

bool ContactRecovery::repairFolder(const QContactCollection &collection) const
{
    const auto rows = ContactFolderRows::read(mContext.accountId, ContactFolders::serverIdOf(collection));
    const QList<QContact> contacts = mContext.manager->contacts(ContactStoreContext::contactsOf(collection));
    if (!rows || mContext.manager->error() != QContactManager::NoError)
        return false;
    Repairs repairs;
    for (const QContact &contact : contacts)
        collect(Moment::Start, contact, rows->serverId(contact.id().toString()), &repairs);
    return carryOut(collection, repairs);
}

void ContactRecovery::removeOrphanedPictures(const QList<QContactCollection> &collections) const
{
    QSet<QString> used;
    const auto add = [&used](const QUrl &url) {
        if (url.isLocalFile())
            used.insert(QFileInfo(url.toLocalFile()).absoluteFilePath());
    };
    for (const QContactCollection &collection : collections) {
        const QList<QContact> contacts =
            mContext.manager->contacts(ContactStoreContext::contactsOf(collection));
        if (mContext.manager->error() != QContactManager::NoError)
            return;
        for (const QContact &contact : contacts)
            add(contact.detail<QContactAvatar>().imageUrl());
    }
    ContactAvatars(mContext.accountId).removeOrphans(used);
}

// Folders

bool ContactRecovery::repairFolders()
{
    EasDatabase *database = EasDatabase::instance();
    const auto first =
        database->folderItemsByFolderType(mContext.accountId, EasFolderItem::DefaultContactsFolder);
    const auto others =
        database->folderItemsByFolderType(mContext.accountId, EasFolderItem::UserCreatedContactsFolder);
    if (!first || !others)
        return false;
    for (const EasFolderItem &row : *first + *others) {
        const ContactFolders::Lookup present = mFolders.find(row.serverId());
        if (!present.complete)
            return false;
        if (!present.collection) {
            if (!row.localId().isEmpty() && !remake(row))
                return false;
        } else if (ContactFolders::isSentAnew(*present.collection) && !mNotNamed.contains(row.serverId())) {
            qCInfo(eas()) << "contacts folder was sent anew in part, starting over:" << row.serverId();
            if (!startAnew(row))
                return false;
        }
    }
    return true;
}

bool ContactRecovery::startAnew(EasFolderItem row) const
{
    row.setSyncKey(ProtocolUtils::InitialSyncKey);
    row.appendChangedField(Wbxml::AirSync::SyncKey.key());
    return EasDatabase::instance()->updateFolderItems(mContext.accountId, { row });
}

bool ContactRecovery::remake(const EasFolderItem &row) const
{
    // The collection comes last: without it all of this is done again.
    return startAnew(row) && EasDatabase::instance()->clearContactsFolder(mContext.accountId, row.serverId())
        && mFolders.recreate(row.serverId());
}

// Everything anew

bool ContactRecovery::expectAll(const QString &folderServerId)
{
    mNotNamed.remove(folderServerId);
    const ContactFolders::Lookup present = mFolders.find(folderServerId);
    const auto rows = ContactFolderRows::read(mContext.accountId, folderServerId);
    if (!present.complete || !rows)
        return false;
    const QStringList known = rows->localIds();
    if (!present.collection)
        return true;
    if (known.isEmpty())
        return !ContactFolders::isSentAnew(*present.collection)
            || mFolders.markAsSentAnew(*present.collection, false);
    // Rows of what the server does not name will be forgotten, and from then on the origin alone tells such a
    // contact from one that was made here.
    Repairs repairs;
    if (!collectKnown(Moment::AllReceived, *rows, known, &repairs)
        || !mStore.rewrite(*present.collection, repairs.toRewrite)
        || !mFolders.markAsSentAnew(*present.collection, true))
        return false;
    mNotNamed.insert(folderServerId, QSet<QString>(known.cbegin(), known.cend()));
    return true;
}

void ContactRecovery::named(const QStringList &localIds)
{
    for (QSet<QString> &notNamed : mNotNamed) {
        for (const QString &localId : localIds)
            notNamed.remove(localId);
    }
}

void ContactRecovery::uploaded(const QStringList &localIds)
{
    for (const QString &localId : localIds)
        mUnsigned.insert(localId);
}

bool ContactRecovery::allReceived(const QString &folderServerId)
{
    const ContactFolders::Lookup present = mFolders.find(folderServerId);
    const auto rows = ContactFolderRows::read(mContext.accountId, folderServerId);
    if (!present.complete || !rows)
        return false;
    if (!present.collection)
        return true;
    QStringList notNamed;
    QStringList unsignedIds;
    const QStringList known = rows->localIds();
    const QSet<QString> waiting = mNotNamed.value(folderServerId);
    for (const QString &localId : known) {
        if (waiting.contains(localId))
            notNamed.append(localId);
        else if (mUnsigned.contains(localId))
            unsignedIds.append(localId);
    }
    Repairs repairs;
    if (!collectStrays(*present.collection, *rows, &repairs) || !collectNotNamed(notNamed, &repairs)
        || !collectKnown(Moment::AllReceived, *rows, unsignedIds, &repairs)
        || !forgetRows(folderServerId, *rows, notNamed) || !carryOut(*present.collection, repairs))
        return false;
    if (ContactFolders::isSentAnew(*present.collection)
        && !mFolders.markAsSentAnew(*present.collection, false))
        return false;
    mNotNamed.remove(folderServerId);
    for (const QString &localId : qAsConst(unsignedIds))
        mUnsigned.remove(localId);
    return true;
}

bool ContactRecovery::collectStrays(
    const QContactCollection &collection, const ContactFolderRows &rows, Repairs *repairs) const
{
    QList<QContact> strays;
    if (!mStrays.find(collection, rows, &strays))
        return false;
    for (const QContact &contact : qAsConst(strays))
        collect(Moment::AllReceived, contact, QString(), repairs);
    return true;
}

bool ContactRecovery::collectNotNamed(const QStringList &localIds, Repairs *repairs) const
{
    for (const QString &localId : localIds) {
        QContact contact;
        const QContactId id = QContactId::fromString(localId);
        if (!mContext.read(id, &contact))
            return false;
        // Without the row, which goes.
        if (!contact.id().isNull())
            collect(Moment::AllReceived, contact, QString(), repairs);
        else if (!id.isNull())
            repairs->toRemove.append(id); // the user has removed it as well
    }
    return true;
}

bool ContactRecovery::collectKnown(
    Moment moment, const ContactFolderRows &rows, const QStringList &localIds, Repairs *repairs) const
{
    for (const QString &localId : localIds) {
        QContact contact;
        if (!mContext.read(QContactId::fromString(localId), &contact))
            return false;
        if (!contact.id().isNull())
            collect(moment, contact, rows.serverId(localId), repairs);
    }
    return true;
}

bool ContactRecovery::forgetRows(
    const QString &folderServerId, const ContactFolderRows &rows, const QStringList &localIds) const
{
    QStringList serverIds;
    for (const QString &localId : localIds)
        serverIds.append(rows.serverId(localId));
    return serverIds.isEmpty()
        || EasDatabase::instance()->deleteContactsItems(mContext.accountId, serverIds, folderServerId);
}
