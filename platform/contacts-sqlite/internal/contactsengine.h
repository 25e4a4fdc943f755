// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/collectiontable.h"
#include "internal/contactchangenotifier.h"
#include "internal/contactdatabase.h"
#include "internal/contacttable.h"

#include <contactmanagerengine.h>

#include <functional>
#include <memory>

/**
 * The contact store's engine: what managers and their extension ask for, on a database that several processes
 * share. Enters itself in the application's list, where contactManagerEngine() finds it. Owned by its
 * manager.
 */
class ContactsEngine : public QtContactsSqliteExtensions::ContactManagerEngine
{
    Q_OBJECT

public:
    typedef QContactManager::Error Error;

    explicit ContactsEngine(const QMap<QString, QString> &parameters);
    ~ContactsEngine() override;

    bool open(const QString &folder);

    QString managerName() const override;
    QMap<QString, QString> managerParameters() const override;
    QMap<QString, QString> idInterpretationParameters() const override;
    int managerVersion() const override;

    QList<QContactId> contactIds(const QtContacts::QContactFilter &filter,
        const QList<QtContacts::QContactSortOrder> &sortOrders, Error *error) const override;
    QList<QContact> contacts(const QtContacts::QContactFilter &filter,
        const QList<QtContacts::QContactSortOrder> &sortOrders,
        const QtContacts::QContactFetchHint &fetchHint, Error *error) const override;
    QList<QContact> contacts(const QList<QContactId> &contactIds,
        const QtContacts::QContactFetchHint &fetchHint, QMap<int, Error> *errorMap,
        Error *error) const override;
    QContact contact(const QContactId &contactId, const QtContacts::QContactFetchHint &fetchHint,
        Error *error) const override;
    using QContactManagerEngine::saveContacts;
    bool saveContacts(QList<QContact> *contacts, QMap<int, Error> *errorMap, Error *error) override;
    bool saveContacts(QList<QContact> *contacts,
        const QList<QtContacts::QContactDetail::DetailType> &typeMask, QMap<int, Error> *errorMap,
        Error *error) override;
    bool removeContacts(
        const QList<QContactId> &contactIds, QMap<int, Error> *errorMap, Error *error) override;
    bool validateContact(const QContact &contact, Error *error) const override;
    bool isFilterSupported(const QtContacts::QContactFilter &filter) const override;

    QContactCollectionId defaultCollectionId() const override;
    QContactCollection collection(const QContactCollectionId &collectionId, Error *error) const override;
    QList<QContactCollection> collections(Error *error) const override;
    bool saveCollection(QContactCollection *collection, Error *error) override;
    bool removeCollection(const QContactCollectionId &collectionId, Error *error) override;

    bool clearChangeFlags(const QList<QContactId> &contactIds, Error *error) override;
    bool clearChangeFlags(const QContactCollectionId &collectionId, Error *error) override;
    bool fetchCollectionChanges(int accountId, const QString &applicationName,
        QList<QContactCollection> *added, QList<QContactCollection> *modified,
        QList<QContactCollection> *deleted, QList<QContactCollection> *unmodified, Error *error) override;
    bool fetchContactChanges(const QContactCollectionId &collectionId, QList<QContact> *added,
        QList<QContact> *modified, QList<QContact> *deleted, QList<QContact> *unmodified,
        Error *error) override;
    bool storeChanges(QHash<QContactCollection *, QList<QContact> *> *addedCollections,
        QHash<QContactCollection *, QList<QContact> *> *modifiedCollections,
        const QList<QContactCollectionId> &deletedCollections,
        ConflictResolutionPolicy conflictResolutionPolicy, bool clearChangeFlags, Error *error) override;

private:
    typedef std::function<Error(ContactChanges &changes)> Work;

    void enterInList();
    void leaveList();
    /** One transaction: committed and told if the work gives no error. */
    bool commit(Error *error, const Work &work);
    /** Of what was read last. */
    Error readError() const;
    void onTold(const ContactChanges &changes);

    const QMap<QString, QString> mParameters;
    ContactDatabase mDatabase;
    ContactTable mContacts;
    CollectionTable mCollections;
    std::unique_ptr<ContactChangeNotifier> mNotifier;
};
