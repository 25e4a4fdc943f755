// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "easitems/easfolderitem.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>

#include <QMap>
#include <QSet>
#include <QStringList>
#include <QUrl>

struct ContactStoreContext;

/** Finds what the user changed, by the store's own change flags, and clears them once the server has it. */
class ContactLocalChanges
{
public:
    explicit ContactLocalChanges(const ContactStoreContext &context);

    bool queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
        QList<EasContactsItem> *changed, QStringList *deletedServerIds);
    bool uploadedLocalChanges(const QStringList &addedLocalIds, const QStringList &changedLocalIds,
        const QStringList &deletedLocalIds) const;

private:
    using Contacts = QList<QtContacts::QContact>;

    bool appendStrays(const QtContacts::QContactCollection &collection, Contacts *added);
    EasContactsItem toItem(const QtContacts::QContact &contact, const EasFolderItem &folder) const;
    EasContactsItem toChangedItem(const QtContacts::QContact &contact, const EasFolderItem &folder,
        const QString &serverId, const QMap<QString, QUrl> &knownAvatars) const;

    const ContactStoreContext &mContext;
    /** Strays of the latest query, by local identifiers: what is still one at the next is none that comes. */
    QSet<QString> mHeldBack;
};
