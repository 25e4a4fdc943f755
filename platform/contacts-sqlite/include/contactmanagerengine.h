// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>
#include <QtContacts/QContactCollectionId>
#include <QtContacts/QContactManagerEngine>

#include <QHash>
#include <QList>
#include <QStringList>

namespace QtContactsSqliteExtensions {

/**
 * What the engine can do beyond QContactManager: it keeps changes of a collection apart for whoever
 * synchronises it. Changes made through a manager get flags, changes stored here get none.
 *
 * The manager owns its engine. The errors must not be null. Each user compiles the moc output itself.
 */
class ContactManagerEngine : public QTCONTACTS_PREPEND_NAMESPACE(QContactManagerEngine)
{
    Q_OBJECT

public:
    typedef QTCONTACTS_PREPEND_NAMESPACE(QContact) QContact;
    typedef QTCONTACTS_PREPEND_NAMESPACE(QContactId) QContactId;
    typedef QTCONTACTS_PREPEND_NAMESPACE(QContactCollection) QContactCollection;
    typedef QTCONTACTS_PREPEND_NAMESPACE(QContactCollectionId) QContactCollectionId;
    typedef QTCONTACTS_PREPEND_NAMESPACE(QContactManager) QContactManager;

    enum ConflictResolutionPolicy { PreserveLocalChanges, PreserveRemoteChanges };

    /** Leaves of the flags what happened since they were fetched, and purges what is deleted. */
    virtual bool clearChangeFlags(const QList<QContactId> &contactIds, QContactManager::Error *error) = 0;
    virtual bool clearChangeFlags(
        const QContactCollectionId &collectionId, QContactManager::Error *error) = 0;

    virtual bool fetchCollectionChanges(int accountId, const QString &applicationName,
        QList<QContactCollection> *added, QList<QContactCollection> *modified,
        QList<QContactCollection> *deleted, QList<QContactCollection> *unmodified,
        QContactManager::Error *error) = 0;

    /** All contacts of the collection by their flags; a null list is skipped. */
    virtual bool fetchContactChanges(const QContactCollectionId &collectionId, QList<QContact> *added,
        QList<QContact> *modified, QList<QContact> *deleted, QList<QContact> *unmodified,
        QContactManager::Error *error) = 0;

    /** One transaction. A contact of a modified collection is passed over unless its status flags say what
     * is to be done with it. */
    virtual bool storeChanges(QHash<QContactCollection *, QList<QContact> *> *addedCollections,
        QHash<QContactCollection *, QList<QContact> *> *modifiedCollections,
        const QList<QContactCollectionId> &deletedCollections,
        ConflictResolutionPolicy conflictResolutionPolicy, bool clearChangeFlags,
        QContactManager::Error *error) = 0;

Q_SIGNALS:
    void contactsPresenceChanged(const QList<QContactId> &contactIds);
    /** After each commit of any process that touched contacts of the collections. */
    void collectionContactsChanged(const QList<QContactCollectionId> &collectionIds);
    void displayLabelGroupsChanged(const QStringList &groups);
};

} // namespace QtContactsSqliteExtensions
