// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/devicetraces.h"

#include "accounts/base/accountstore.h"
#include "storages/contacts/contactstoremanager.h"
#include "support/accountfactory.h"
#include "support/devicecalendar.h"
#include "support/pimlisting.h"
#include "support/storecheck.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStandardPaths>

#include <attachmentinfo.h>
#include <sqlitestorage.h>

#include <QtContacts/QContactManager>

#include <memory>

namespace {

QString mailFile()
{
    return qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db");
}

QString contactsFile()
{
    return qEnvironmentVariable("CONTACTS_DATA") + QStringLiteral("/contacts.db");
}

QString calendarFile()
{
    return DeviceCalendar().storage.staticCast<mKCal::SqliteStorage>()->databaseName();
}

QString quoted(const QStringList &texts)
{
    return texts.isEmpty() ? QString()
                           : QLatin1Char('\'') + texts.join(QStringLiteral("','")) + QLatin1Char('\'');
}

QString among(const char *column, const QStringList &values)
{
    return QStringLiteral("%1 IN (%2)").arg(QLatin1String(column), quoted(values));
}

QString fingerprint(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex());
}

/** Path and content of those of the files that are there. */
QStringList contents(QStringList paths)
{
    paths.sort();
    QStringList found;
    for (const QString &path : qAsConst(paths)) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            found.append(path + QLatin1Char(' ') + fingerprint(file.readAll()));
    }
    return found;
}

/** Those of each file below the folder. */
QStringList filesBelow(const QString &folder)
{
    QStringList paths;
    QDirIterator iterator(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (iterator.hasNext())
        paths.append(iterator.next());
    return contents(paths);
}

} // namespace

DeviceTraces::DeviceTraces(EasAccountId accountId)
    : mAccount(QString::number(accountId))
    , mAccountId(accountId)
    , mStore(AccountStore::manager())
{
    const QString mapping = StoreCheck::mappingFile();
    for (const char *const table : { "accounts", "collections", "emails", "calendar", "contacts" })
        addQuery("mapping", mapping, table, QStringLiteral("account_id = ") + mAccount);
    rememberMail();
    rememberCalendar();
    rememberContacts();
    rememberIdentities();
}

void DeviceTraces::rememberMail()
{
    const QString file = mailFile();
    const QStringList folders =
        values(file, QStringLiteral("SELECT id FROM folders WHERE account = ") + mAccount);
    const QStringList messages =
        values(file, QStringLiteral("SELECT id FROM messages WHERE account = ") + mAccount);
    const QStringList contents =
        values(file, QStringLiteral("SELECT content FROM messages WHERE account = ") + mAccount);
    addQuery("mail store", file, "accounts", QStringLiteral("id = ") + mAccount);
    addQuery("mail store", file, "folders", QStringLiteral("account = ") + mAccount);
    addQuery("mail store", file, "folder_fields", among("owner", folders));
    addQuery("mail store", file, "messages", QStringLiteral("account = ") + mAccount);
    addQuery("mail store", file, "message_fields", among("owner", messages));
    addQuery("mail store", file, "contents", among("id", contents));
    addQuery("mail store", file, "removal_records", QStringLiteral("account = ") + mAccount);
}

void DeviceTraces::rememberCalendar()
{
    const QString file = calendarFile();
    const QString ofAccount = QStringLiteral("account = '%1'").arg(mAccount);
    const QStringList notebooks =
        values(file, QStringLiteral("SELECT uid FROM notebooks WHERE ") + ofAccount);
    const QStringList uids =
        values(file, QStringLiteral("SELECT uid FROM incidences WHERE ") + among("notebook", notebooks));
    const DeviceCalendar device;
    const KCalendarCore::Event::List series = device.series(mAccountId);
    for (const KCalendarCore::Event::Ptr &event : series) {
        const KCalendarCore::Attachment::List attachments = event->attachments();
        for (const KCalendarCore::Attachment &attachment : attachments)
            mCalendarFiles.append(QUrl(mKCal::AttachmentInfo(attachment).contentLocation()).toLocalFile());
    }
    addQuery("calendars", file, "notebooks", among("uid", notebooks));
    addQuery("calendars", file, "incidences", among("notebook", notebooks));
    // The key of an exception is its event's with a moment behind it.
    addQuery("mapping", StoreCheck::mappingFile(), "attachments",
        QStringLiteral("substr(local_id || '|', 1, instr(local_id || '|', '|') - 1) IN (%1)")
            .arg(quoted(uids)));
}

void DeviceTraces::rememberContacts()
{
    const std::unique_ptr<QtContacts::QContactManager> manager(ContactStoreManager::create(nullptr));
    QStringList collections;
    for (const auto &id : PimListing::collectionsOf(*manager, mAccountId))
        collections.append(QString::fromLatin1(id.localId().split('-').last()));
    addQuery("contacts", contactsFile(), "collections", among("id", collections));
    addQuery("contacts", contactsFile(), "contacts", among("collection", collections));
}

void DeviceTraces::rememberIdentities()
{
    const std::unique_ptr<Accounts::Account> account(
        Accounts::Account::fromId(mStore.get(), Accounts::AccountId(mAccountId), nullptr));
    for (const char *const key : { "CredentialsId", "SslCertCredentialsId" }) {
        const quint32 identity = account ? account->value(QLatin1String(key)).toUInt() : 0;
        if (identity != 0)
            mIdentities.append(identity);
    }
}

void DeviceTraces::addQuery(
    const char *store, const QString &file, const char *table, const QString &condition)
{
    mQueries.append({ QStringLiteral("%1, %2").arg(QLatin1String(store), QLatin1String(table)), file,
        QStringLiteral("SELECT * FROM %1 WHERE %2").arg(QLatin1String(table), condition) });
}

QStringList DeviceTraces::values(const QString &file, const QString &sql) const
{
    return StoreCheck::ask(file, sql);
}

QStringList DeviceTraces::rows(const Query &query)
{
    const QString name = QStringLiteral("device-traces");
    QStringList found;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(query.file);
        database.open();
        QSqlQuery select(database);
        if (!select.exec(query.sql))
            found.append(select.lastError().text());
        while (select.next()) {
            QStringList columns;
            for (int column = 0; column < select.record().count(); ++column) {
                const QVariant value = select.value(column);
                columns.append(value.type() == QVariant::ByteArray ? fingerprint(value.toByteArray())
                                                                   : value.toString());
            }
            found.append(columns.join(QLatin1Char('|')));
        }
    }
    QSqlDatabase::removeDatabase(name);
    found.sort();
    return found;
}

QStringList DeviceTraces::record() const
{
    if (!mStore->accountList().contains(Accounts::AccountId(mAccountId)))
        return {};
    const std::unique_ptr<Accounts::Account> account(
        Accounts::Account::fromId(mStore.get(), Accounts::AccountId(mAccountId), nullptr));
    QStringList found { account->displayName() };
    Accounts::ServiceList parts { Accounts::Service() };
    parts += account->services();
    for (const Accounts::Service &part : qAsConst(parts)) {
        account->selectService(part);
        QStringList keys = account->allKeys();
        // The library lists these two or not, by what the process has done with the account before.
        keys.removeAll(QStringLiteral("name"));
        keys.removeAll(QStringLiteral("enabled"));
        found.append(part.name() + QStringLiteral("/ is enabled: ") + QString::number(account->enabled()));
        for (const QString &key : qAsConst(keys))
            found.append(
                part.name() + QLatin1Char('/') + key + QLatin1Char('=') + account->value(key).toString());
    }
    found.sort();
    return found;
}

QStringList DeviceTraces::identities() const
{
    QStringList found;
    for (const quint32 identity : mIdentities) {
        const QString secret = AccountFactory::storedSecret(identity);
        if (!secret.isNull())
            found.append(QStringLiteral("%1 %2").arg(identity).arg(fingerprint(secret.toUtf8())));
    }
    return found;
}

DeviceTraces::Places DeviceTraces::find() const
{
    Places places;
    for (const Query &query : mQueries)
        places.insert(query.place, rows(query));
    places.insert(QStringLiteral("pictures"),
        filesBelow(QDir::homePath() + QStringLiteral("/.avatars/account-") + mAccount));
    places.insert(QStringLiteral("attachments of events"), contents(mCalendarFiles));
    places.insert(QStringLiteral("attachments of mail"),
        filesBelow(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
            + QStringLiteral("/mail_attachments/") + mAccount));
    places.insert(QStringLiteral("sign-on service"), identities());
    places.insert(QStringLiteral("account store"), record());
    return places;
}

QString DeviceTraces::listing(const Places &places)
{
    QString lines;
    for (auto place = places.cbegin(); place != places.cend(); ++place) {
        for (const QString &line : place.value())
            lines += place.key() + QStringLiteral(": ") + line + QLatin1Char('\n');
    }
    return lines;
}

QString DeviceTraces::difference(const Places &found, const Places &wanted)
{
    QString lines;
    const QStringList places = wanted.keys();
    for (const QString &place : places) {
        const QStringList now = found.value(place);
        const QStringList before = wanted.value(place);
        for (const QString &line : before) {
            if (now.count(line) < before.count(line))
                lines += QStringLiteral("lost in %1: %2\n").arg(place, line);
        }
        for (const QString &line : now) {
            if (before.count(line) < now.count(line))
                lines += QStringLiteral("new in %1: %2\n").arg(place, line);
        }
    }
    return lines;
}

QStringList DeviceTraces::emptyPlaces(const Places &places)
{
    QStringList names;
    for (auto place = places.cbegin(); place != places.cend(); ++place) {
        if (place.value().isEmpty())
            names.append(place.key());
    }
    return names;
}
