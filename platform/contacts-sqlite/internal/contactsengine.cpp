// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contactsengine.h"

#include "internal/changelists.h"
#include "internal/contactedits.h"
#include "internal/contactids.h"
#include "internal/contactsync.h"
#include "internal/detailcodec.h"

#include <qcontactstatusflags_impl.h>

#include <QtContacts/QContactCollectionFilter>
#include <QtContacts/QContactIntersectionFilter>

#include <QCoreApplication>
#include <QFileInfo>

QTCONTACTS_USE_NAMESPACE

namespace {

const char engineList[] = "qc_sqlite_extension_engine";

template <typename Id, Id (*make)(quint64)> QList<Id> ids(const QList<quint64> &numbers)
{
    QList<Id> list;
    for (const quint64 number : numbers)
        list.append(make(number));
    return list;
}

/** The collections to which a filter restricts what it lets pass; none if it does not say. */
QSet<quint64> collectionsOf(const QContactFilter &filter)
{
    QSet<quint64> numbers;
    if (filter.type() == QContactFilter::CollectionFilter) {
        const QSet<QContactCollectionId> ids = QContactCollectionFilter(filter).collectionIds();
        for (const QContactCollectionId &id : ids)
            numbers.insert(ContactIds::number(id));
    } else if (filter.type() == QContactFilter::IntersectionFilter) {
        const QList<QContactFilter> parts = QContactIntersectionFilter(filter).filters();
        for (int i = 0; i < parts.size() && numbers.isEmpty(); ++i)
            numbers = collectionsOf(parts.at(i));
    }
    return numbers;
}

template <typename List>
void noteFirst(QMap<int, QContactManager::Error> *map, List *error, int index, QContactManager::Error what)
{
    if (what == QContactManager::NoError)
        return;
    if (map)
        map->insert(index, what);
    if (*error == QContactManager::NoError)
        *error = what;
}

} // namespace

ContactsEngine::ContactsEngine(const QMap<QString, QString> &parameters)
    : mParameters(parameters)
    , mContacts(mDatabase)
    , mCollections(mDatabase)
{
    qRegisterMetaType<QList<QContactId>>("QList<QContactId>");
    qRegisterMetaType<QList<QContactCollectionId>>("QList<QContactCollectionId>");
    enterInList();
}

ContactsEngine::~ContactsEngine()
{
    leaveList();
}

void ContactsEngine::enterInList()
{
    if (!qApp)
        return;
    QVariantList engines = qApp->property(engineList).toList();
    engines.append(QVariant::fromValue<QObject *>(this));
    qApp->setProperty(engineList, engines);
}

void ContactsEngine::leaveList()
{
    if (!qApp)
        return;
    QVariantList engines = qApp->property(engineList).toList();
    engines.removeAll(QVariant::fromValue<QObject *>(this));
    qApp->setProperty(engineList, engines);
}

bool ContactsEngine::open(const QString &folder)
{
    if (!mDatabase.open(folder))
        return false;
    mNotifier = std::make_unique<ContactChangeNotifier>(QFileInfo(folder).canonicalFilePath());
    connect(mNotifier.get(), &ContactChangeNotifier::told, this, &ContactsEngine::onTold);
    return true;
}

QString ContactsEngine::managerName() const
{
    return QString::fromLatin1(ContactIds::managerName);
}

QMap<QString, QString> ContactsEngine::managerParameters() const
{
    return mParameters;
}

QMap<QString, QString> ContactsEngine::idInterpretationParameters() const
{
    return {};
}

int ContactsEngine::managerVersion() const
{
    return 2;
}

bool ContactsEngine::commit(Error *error, const Work &work)
{
    ContactChanges changes;
    SqliteDatabase::Transaction transaction(mDatabase);
    *error = transaction.isActive() ? work(changes) : QContactManager::UnspecifiedError;
    if (*error == QContactManager::NoError && !transaction.commit())
        *error = QContactManager::UnspecifiedError;
    if (*error != QContactManager::NoError)
        return false;
    mNotifier->tell(changes);
    return true;
}

ContactsEngine::Error ContactsEngine::readError() const
{
    return mDatabase.isOpen() && mDatabase.worked() ? QContactManager::NoError
                                                    : QContactManager::UnspecifiedError;
}

void ContactsEngine::onTold(const ContactChanges &changes)
{
    const auto contacts = [&changes](ContactChanges::Kind kind) {
        return ids<QContactId, ContactIds::contact>(changes.of(kind));
    };
    const auto collections = [&changes](ContactChanges::Kind kind) {
        return ids<QContactCollectionId, ContactIds::collection>(changes.of(kind));
    };
    const auto any = [&changes](ContactChanges::Kind kind) {
        return !changes.of(kind).isEmpty();
    };

    if (any(ContactChanges::CollectionsAdded))
        Q_EMIT collectionsAdded(collections(ContactChanges::CollectionsAdded));
    if (any(ContactChanges::CollectionsChanged))
        Q_EMIT collectionsChanged(collections(ContactChanges::CollectionsChanged));
    if (any(ContactChanges::ContactsAdded))
        Q_EMIT contactsAdded(contacts(ContactChanges::ContactsAdded));
    if (any(ContactChanges::ContactsChanged))
        Q_EMIT contactsChanged(contacts(ContactChanges::ContactsChanged), {});
    if (any(ContactChanges::ContactsRemoved))
        Q_EMIT contactsRemoved(contacts(ContactChanges::ContactsRemoved));
    if (any(ContactChanges::CollectionsRemoved))
        Q_EMIT collectionsRemoved(collections(ContactChanges::CollectionsRemoved));
    if (any(ContactChanges::CollectionContactsChanged))
        Q_EMIT collectionContactsChanged(collections(ContactChanges::CollectionContactsChanged));
}

// Contacts

QList<QContactId> ContactsEngine::contactIds(
    const QContactFilter &filter, const QList<QContactSortOrder> &sortOrders, Error *error) const
{
    // Contents matter to neither of these.
    const bool byCollection = filter.type() == QContactFilter::CollectionFilter;
    if (sortOrders.isEmpty() && (byCollection || filter.type() == QContactFilter::DefaultFilter)) {
        const QSet<quint64> collections = collectionsOf(filter);
        const QList<quint64> numbers =
            byCollection && collections.isEmpty() ? QList<quint64>() : mContacts.numbers(collections);
        *error = readError();
        return ids<QContactId, ContactIds::contact>(numbers);
    }
    QList<QContactId> list;
    const QList<QContact> found = contacts(filter, sortOrders, QContactFetchHint(), error);
    for (const QContact &contact : found)
        list.append(contact.id());
    return list;
}

QList<QContact> ContactsEngine::contacts(const QContactFilter &filter,
    const QList<QContactSortOrder> &sortOrders, const QContactFetchHint &, Error *error) const
{
    QList<QContact> found;
    const QList<QContact> all = mContacts.contacts(collectionsOf(filter));
    *error = readError();
    for (const QContact &contact : all) {
        if (testFilter(filter, contact))
            addSorted(&found, contact, sortOrders);
    }
    return found;
}

QList<QContact> ContactsEngine::contacts(const QList<QContactId> &contactIds,
    const QContactFetchHint &fetchHint, QMap<int, Error> *errorMap, Error *error) const
{
    *error = QContactManager::NoError;
    QList<QContact> list;
    for (int i = 0; i < contactIds.size(); ++i) {
        Error own = QContactManager::NoError;
        list.append(contact(contactIds.at(i), fetchHint, &own));
        noteFirst(errorMap, error, i, own);
    }
    return list;
}

QContact ContactsEngine::contact(const QContactId &contactId, const QContactFetchHint &, Error *error) const
{
    const QContact found = mContacts.contact(ContactIds::number(contactId));
    *error = readError();
    if (*error == QContactManager::NoError && found.id().isNull())
        *error = QContactManager::DoesNotExistError;
    return found;
}

bool ContactsEngine::saveContacts(QList<QContact> *contacts, QMap<int, Error> *errorMap, Error *error)
{
    return saveContacts(contacts, {}, errorMap, error);
}

bool ContactsEngine::saveContacts(QList<QContact> *contacts,
    const QList<QContactDetail::DetailType> &typeMask, QMap<int, Error> *errorMap, Error *error)
{
    if (!contacts) {
        *error = QContactManager::BadArgumentError;
        return false;
    }
    // A contact that is refused does not keep the others from being stored.
    Error refused = QContactManager::NoError;
    const bool committed = commit(error, [&](ContactChanges &changes) {
        for (int i = 0; i < contacts->size(); ++i)
            noteFirst(errorMap, &refused, i,
                ContactEdits(mContacts, mCollections, changes).save((*contacts)[i], typeMask));
        return QContactManager::NoError;
    });
    if (committed)
        *error = refused;
    return *error == QContactManager::NoError;
}

bool ContactsEngine::removeContacts(
    const QList<QContactId> &contactIds, QMap<int, Error> *errorMap, Error *error)
{
    Error refused = QContactManager::NoError;
    const bool committed = commit(error, [&](ContactChanges &changes) {
        for (int i = 0; i < contactIds.size(); ++i)
            noteFirst(errorMap, &refused, i,
                ContactEdits(mContacts, mCollections, changes).remove(contactIds.at(i)));
        return QContactManager::NoError;
    });
    if (committed)
        *error = refused;
    return *error == QContactManager::NoError;
}

bool ContactsEngine::validateContact(const QContact &contact, Error *error) const
{
    *error = DetailCodec::check(contact);
    return *error == QContactManager::NoError;
}

bool ContactsEngine::isFilterSupported(const QContactFilter &) const
{
    return true;
}

// Collections

QtContactsSqliteExtensions::ContactManagerEngine::QContactCollectionId
ContactsEngine::defaultCollectionId() const
{
    return ContactIds::collection(ContactIds::localCollection);
}

QContactCollection ContactsEngine::collection(const QContactCollectionId &collectionId, Error *error) const
{
    const auto found = mCollections.collection(ContactIds::number(collectionId));
    *error = readError();
    if (*error == QContactManager::NoError && !found)
        *error = QContactManager::DoesNotExistError;
    return found.value_or(QContactCollection());
}

QList<QContactCollection> ContactsEngine::collections(Error *error) const
{
    const QList<QContactCollection> list = mCollections.collections();
    *error = readError();
    return list;
}

bool ContactsEngine::saveCollection(QContactCollection *collection, Error *error)
{
    if (!collection) {
        *error = QContactManager::BadArgumentError;
        return false;
    }
    return commit(error, [&](ContactChanges &changes) {
        return ContactEdits(mContacts, mCollections, changes).saveCollection(*collection);
    });
}

bool ContactsEngine::removeCollection(const QContactCollectionId &collectionId, Error *error)
{
    return commit(error, [&](ContactChanges &changes) {
        return ContactSync(mContacts, mCollections, changes)
            .removeCollection(ContactIds::number(collectionId));
    });
}

// The extension

bool ContactsEngine::clearChangeFlags(const QList<QContactId> &contactIds, Error *error)
{
    return commit(error, [&](ContactChanges &) {
        for (const QContactId &id : contactIds) {
            if (!mContacts.clearFlags(ContactIds::number(id)))
                return QContactManager::UnspecifiedError;
        }
        return QContactManager::NoError;
    });
}

bool ContactsEngine::clearChangeFlags(const QContactCollectionId &collectionId, Error *error)
{
    return commit(error, [&](ContactChanges &changes) {
        return ContactSync(mContacts, mCollections, changes)
            .clearCollectionFlags(ContactIds::number(collectionId));
    });
}

bool ContactsEngine::fetchCollectionChanges(int accountId, const QString &applicationName,
    QList<QContactCollection> *added, QList<QContactCollection> *modified, QList<QContactCollection> *deleted,
    QList<QContactCollection> *unmodified, Error *error)
{
    const ChangeLists<QContactCollection> lists { added, modified, deleted, unmodified };
    const QList<CollectionTable::Row> rows = mCollections.withDeleted();
    *error = readError();
    for (const CollectionTable::Row &row : rows) {
        if (row.collection.extendedMetaData(QStringLiteral("AccountId")).toInt() == accountId
            && row.collection.extendedMetaData(QStringLiteral("ApplicationName")).toString()
                == applicationName)
            lists.sortIn(row.collection, row.flags);
    }
    return *error == QContactManager::NoError;
}

bool ContactsEngine::fetchContactChanges(const QContactCollectionId &collectionId, QList<QContact> *added,
    QList<QContact> *modified, QList<QContact> *deleted, QList<QContact> *unmodified, Error *error)
{
    const ChangeLists<QContact> lists { added, modified, deleted, unmodified };
    return commit(error, [&](ContactChanges &) {
        const quint64 collection = ContactIds::number(collectionId);
        // Whoever does not ask for the rest spares the reading of nearly all there is.
        const QList<QContact> all =
            unmodified ? mContacts.withDeleted(collection) : mContacts.changed(collection);
        if (readError() != QContactManager::NoError)
            return readError();
        for (const QContact &contact : all)
            lists.sortIn(contact, int(contact.detail<QContactStatusFlags>().flagsValue()));
        return mContacts.startRecording(collection) ? QContactManager::NoError
                                                    : QContactManager::UnspecifiedError;
    });
}

bool ContactsEngine::storeChanges(QHash<QContactCollection *, QList<QContact> *> *addedCollections,
    QHash<QContactCollection *, QList<QContact> *> *modifiedCollections,
    const QList<QContactCollectionId> &deletedCollections, ConflictResolutionPolicy, bool clearChangeFlags,
    Error *error)
{
    const ContactSync::ContactsByCollection added =
        addedCollections ? *addedCollections : ContactSync::ContactsByCollection();
    const ContactSync::ContactsByCollection modified =
        modifiedCollections ? *modifiedCollections : ContactSync::ContactsByCollection();
    return commit(error, [&](ContactChanges &changes) {
        return ContactSync(mContacts, mCollections, changes)
            .store(added, modified, deletedCollections, clearChangeFlags);
    });
}
