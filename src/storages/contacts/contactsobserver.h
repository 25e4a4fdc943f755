// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QtContacts/QContactCollection>
#include <QtContacts/QContactManager>

#include <QHash>
#include <QObject>
#include <QString>

/**
 * Tells when contacts of an account's collections have changed, by whom ever: the store reports the engine's
 * own writes as well. Owned by the storage, as long as the account's contacts are enabled.
 */
class ContactsObserver : public QObject
{
    Q_OBJECT

public:
    ContactsObserver(EasAccountId accountId, const QString &applicationName,
        QtContacts::QContactManager &manager, QObject *parent);

Q_SIGNALS:
    void localChangesAvailable(const QList<QString> &serverFolderIds);

private Q_SLOTS:
    void onCollectionContactsChanged(const QList<QtContacts::QContactCollectionId> &ids);

private:
    /** Enters the collection if it is the account's. */
    void observeCollection(const QtContacts::QContactCollection &collection);

    const EasAccountId mAccountId;
    const QString mApplicationName;
    QtContacts::QContactManager &mManager;
    QHash<QtContacts::QContactCollectionId, QString> mServerIds;
};
