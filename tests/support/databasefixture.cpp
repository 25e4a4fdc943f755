// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/databasefixture.h"

#include "application/mapping/easdatabase.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

namespace {

const char FileName[] = "mapping.db";

/** A second connection to the file, for as long as one call. */
class ByHand
{
public:
    explicit ByHand(const QString &file)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name());
        database.setDatabaseName(file);
        if (!database.open())
            qFatal("cannot open %s by hand", qPrintable(file));
    }

    ~ByHand() { QSqlDatabase::removeDatabase(name()); }
    Q_DISABLE_COPY(ByHand)

    QStringList run(const QString &sql) const
    {
        QSqlQuery query(QSqlDatabase::database(name()));
        if (!query.exec(sql))
            qFatal("%s: %s", qPrintable(sql), qPrintable(query.lastError().text()));
        QStringList rows;
        while (query.next()) {
            QStringList values;
            for (int column = 0; column < query.record().count(); ++column)
                values.append(query.isNull(column) ? QStringLiteral("NULL") : query.value(column).toString());
            rows.append(values.join(QLatin1Char('|')));
        }
        return rows;
    }

private:
    static QString name() { return QStringLiteral("by-hand"); }
};

} // namespace

DatabaseFixture::DatabaseFixture(Begin begin)
{
    static int counter = 0;
    mPath = QByteArray("databases/") + QByteArray::number(++counter) + '/';
    if (begin == Opened)
        open();
}

DatabaseFixture::~DatabaseFixture()
{
    release();
}

void DatabaseFixture::open()
{
    EasDatabase::initializeInstance(nullptr, mPath.constData(), FileName);
}

void DatabaseFixture::reopen()
{
    release();
    open();
}

void DatabaseFixture::release()
{
    EasDatabase::releaseInstance();
}

void DatabaseFixture::closeConnection()
{
    QSqlDatabase::database(QStringLiteral("fennel-eas-db"), false).close();
}

QString DatabaseFixture::folder() const
{
    return QDir::homePath() + QLatin1Char('/') + QString::fromLatin1(mPath);
}

QString DatabaseFixture::file() const
{
    return folder() + QLatin1String(FileName);
}

void DatabaseFixture::execute(const QStringList &statements) const
{
    QDir().mkpath(folder());
    const ByHand connection(file());
    for (const QString &statement : statements)
        connection.run(statement);
}

void DatabaseFixture::refuse(const char *kind, const char *table) const
{
    execute(
        { QStringLiteral("CREATE TRIGGER refuse BEFORE %1 ON %2 BEGIN SELECT RAISE(ABORT, 'refused'); END")
                .arg(QLatin1String(kind), QLatin1String(table)) });
}

QStringList DatabaseFixture::rows(const QString &query) const
{
    return ByHand(file()).run(query);
}

QStringList DatabaseFixture::content() const
{
    QStringList content = rows(QStringLiteral("SELECT sql FROM sqlite_master ORDER BY name"));
    const QStringList tables = rows(QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' "
                                                   "AND name NOT LIKE 'sqlite_%' ORDER BY name"));
    for (const QString &table : tables) {
        const QStringList values = rows(QStringLiteral("SELECT * FROM %1").arg(table));
        for (const QString &value : values)
            content.append(table + QLatin1String(": ") + value);
    }
    return content;
}
