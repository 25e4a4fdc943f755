// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interopbed.h"

#include "easitems/emailserverid.h"
#include "support/realserver.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <extendedcalendar.h>
#include <extendedstorage.h>
#include <sqlitestorage.h>

#include <qmailmessage.h>

namespace {

/** The large mailbox takes a minute on a quiet machine. */
constexpr int Patience = 600000;
const char ConnectionName[] = "stored-data";

QStringList databaseFiles()
{
    QStringList files { QDir::homePath()
        + QStringLiteral("/.local/share/system/privileged/eas-fennel/fennel_eas.db") };
    QDirIterator mail(qEnvironmentVariable("QMF_DATA"),
        { QStringLiteral("*.db"), QStringLiteral("*.sqlite") }, QDir::Files, QDirIterator::Subdirectories);
    while (mail.hasNext())
        files.append(mail.next());
    const auto calendar = mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc());
    files.append(
        mKCal::ExtendedCalendar::defaultStorage(calendar).staticCast<mKCal::SqliteStorage>()->databaseName());
    files.append(qEnvironmentVariable("CONTACTS_DATA") + QStringLiteral("/contacts.db"));
    return files;
}

/** A calendar notes when it was synchronised last. */
const QString timeOfSync = QStringLiteral("sync_date");

QByteArray tableHash(const QSqlDatabase &database, const QString &table)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QSqlQuery rows(database);
    rows.exec(QStringLiteral("SELECT * FROM \"%1\" ORDER BY 1").arg(table));
    while (rows.next()) {
        for (int column = 0; column < rows.record().count(); ++column) {
            if (rows.record().fieldName(column) == timeOfSync)
                continue;
            hash.addData(rows.value(column).toByteArray());
            hash.addData("\x1f", 1);
        }
    }
    return hash.result().toHex();
}

} // namespace

InteropBed::InteropBed(const RealServer &server, const QString &user, const Connection &connection)
    : mImap(RealServer::host(), server.imapPort(), user, RealServer::password())
{
    setPatience(Patience);
    AccountOptions options;
    options.userName = user;
    options.password = RealServer::password();
    options.emailAddress = RealServer::address(user);
    options.host = RealServer::host();
    options.port = connection.secure ? server.httpsPort() : server.httpPort();
    options.secure = connection.secure;
    options.acceptAllCertificates = connection.acceptAllCertificates;
    options.preferredVersion = connection.version;
    options.contactsEnabled = connection.contacts;
    options.calendarsEnabled = connection.calendar;
    start(options);
}

QStringList InteropBed::serverState()
{
    QStringList lines;
    const QList<ImapMessage> messages = mImap.messages();
    for (const ImapMessage &message : messages)
        lines.append(stateLine(message.folder, message.subject, message.read));
    lines.sort();
    return lines;
}

QString InteropBed::place(const ImapMessage &message)
{
    return message.folder + QLatin1Char('/') + QString::number(message.uid);
}

QString InteropBed::place(const QMailMessage &message)
{
    return devicePath(message.parentFolderId()) + QLatin1Char('/')
        + KeptEmailId(message.serverUid()).onWire().text();
}

QMap<QString, QByteArray> InteropBed::storedData()
{
    QMap<QString, QByteArray> hashes;
    const QStringList files = databaseFiles();
    for (const QString &file : files) {
        if (!QFileInfo::exists(file)) // a service that the account does not use
            continue;
        {
            QSqlDatabase database =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(ConnectionName));
            database.setDatabaseName(file);
            if (!database.open())
                return {};
            const QStringList tables = database.tables();
            for (const QString &table : tables)
                hashes.insert(
                    QFileInfo(file).fileName() + QLatin1Char(':') + table, tableHash(database, table));
        }
        QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
    }
    return hashes;
}
