// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/calendarrows.h"

#include "support/sqlitedatabase.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace mKCal {

namespace {

struct Flag
{
    bool (Notebook::*get)() const;
    void (Notebook::*set)(bool);
};

// A flag's place is its bit in the column; new ones go to the end.
const Flag flags[] = {
    { &Notebook::isShared, &Notebook::setIsShared },
    { &Notebook::isMaster, &Notebook::setIsMaster },
    { &Notebook::isSynchronized, &Notebook::setIsSynchronized },
    { &Notebook::isReadOnly, &Notebook::setIsReadOnly },
    { &Notebook::isVisible, &Notebook::setIsVisible },
    { &Notebook::isShareable, &Notebook::setIsShareable },
    { &Notebook::eventsAllowed, &Notebook::setEventsAllowed },
    { &Notebook::journalsAllowed, &Notebook::setJournalsAllowed },
    { &Notebook::todosAllowed, &Notebook::setTodosAllowed },
};

int readFlags(const Notebook &notebook)
{
    int bits = 0;
    int bit = 1;
    for (const Flag &flag : flags) {
        if ((notebook.*flag.get)())
            bits |= bit;
        bit <<= 1;
    }
    return bits;
}

void writeFlags(Notebook &notebook, int bits)
{
    for (const Flag &flag : flags) {
        (notebook.*flag.set)(bits & 1);
        bits >>= 1;
    }
}

QVariant seconds(const QDateTime &time)
{
    return time.isValid() ? QVariant(time.toSecsSinceEpoch()) : QVariant(QVariant::LongLong);
}

QDateTime toTime(const QVariant &seconds)
{
    return seconds.isNull() ? QDateTime() : QDateTime::fromSecsSinceEpoch(seconds.toLongLong(), Qt::UTC);
}

QByteArray readProperties(const Notebook &notebook)
{
    QJsonObject properties;
    const QList<QByteArray> keys = notebook.customPropertyKeys();
    for (const QByteArray &key : keys)
        properties.insert(QString::fromUtf8(key), notebook.customProperty(key));
    return QJsonDocument(properties).toJson(QJsonDocument::Compact);
}

void writeProperties(Notebook &notebook, const QByteArray &text)
{
    const QJsonObject properties = QJsonDocument::fromJson(text).object();
    for (auto property = properties.begin(); property != properties.end(); ++property)
        notebook.setCustomProperty(property.key().toUtf8(), property.value().toString());
}

Notebook::Ptr fromRow(const QSqlQuery &row)
{
    const Notebook::Ptr notebook = Notebook::Ptr::create();
    notebook->setUid(row.value(0).toString());
    notebook->setName(row.value(1).toString());
    notebook->setDescription(row.value(2).toString());
    notebook->setColor(row.value(3).toString());
    writeFlags(*notebook, row.value(4).toInt());
    notebook->setPluginName(row.value(5).toString());
    notebook->setAccount(row.value(6).toString());
    notebook->setSyncProfile(row.value(7).toString());
    notebook->setAttachmentSize(row.value(8).toInt());
    notebook->setSyncDate(toTime(row.value(9)));
    notebook->setCreationDate(toTime(row.value(11)));
    writeProperties(*notebook, row.value(12).toByteArray());
    notebook->setModifiedDate(toTime(row.value(10))); // Last: the other setters change it.
    return notebook;
}

} // namespace

bool NotebookRows::isEmpty()
{
    return mDatabase.value(QStringLiteral("SELECT COUNT(*) FROM notebooks")) == QVariant(0);
}

bool NotebookRows::read(Notebook::List *notebooks, QString *defaultUid)
{
    const bool done = mDatabase.select(
        QStringLiteral("SELECT uid, name, description, color, flags, plugin, account, sync_profile,"
                       " attachment_size, sync_date, modified, created, properties FROM notebooks"),
        {}, [notebooks](const QSqlQuery &row) { notebooks->append(fromRow(row)); });
    const auto uid = mDatabase.value(QStringLiteral("SELECT value FROM settings WHERE name = 'default'"));
    *defaultUid = uid.value_or(QVariant()).toString();
    return done && uid;
}

bool NotebookRows::write(const Notebook::Ptr &notebook)
{
    return mDatabase.run(
        QStringLiteral("INSERT OR REPLACE INTO notebooks (uid, name, description, color, flags, plugin,"
                       " account, sync_profile, attachment_size, sync_date, modified, created, properties)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        { notebook->uid(), notebook->name(), notebook->description(), notebook->color(), readFlags(*notebook),
            notebook->pluginName(), notebook->account(), notebook->syncProfile(), notebook->attachmentSize(),
            seconds(notebook->syncDate()), seconds(notebook->modifiedDate()),
            seconds(notebook->creationDate()), readProperties(*notebook) });
}

bool NotebookRows::erase(const QString &uid)
{
    return mDatabase.run(QStringLiteral("DELETE FROM incidences WHERE notebook = ?"), { uid })
        && mDatabase.run(QStringLiteral("DELETE FROM notebooks WHERE uid = ?"), { uid })
        && mDatabase.run(
            QStringLiteral("DELETE FROM settings WHERE name = 'default' AND value = ?"), { uid });
}

bool NotebookRows::setDefault(const QString &uid)
{
    return mDatabase.run(
        QStringLiteral("INSERT OR REPLACE INTO settings (name, value) VALUES ('default', ?)"), { uid });
}

} // namespace mKCal
