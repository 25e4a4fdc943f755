// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/commandrunner.h"
#include "client/contactbook.h"
#include "client/eventstore.h"
#include "common/exchangeactivesync.h"
#include "storages/contacts/contactstoremanager.h"
#include "support/accountfactory.h"
#include "support/privatebus.h"

#include <QFile>
#include <QtTest>

#include <memory>

/** What tests of whole commands share: an account, a calendar store and a contact store of their own. */
class CommandScene
{
public:
    CommandScene()
        : mReady(PrivateBus::ensure())
    {
        qputenv("SQLITESTORAGEDB", mFolder.filePath(QStringLiteral("calendar.db")).toLocal8Bit());
        if (!mReady)
            return;
        mAccounts = std::make_unique<AccountFactory>();
        mAccountId = mAccounts->create();
    }
    ~CommandScene() { qunsetenv("SQLITESTORAGEDB"); }
    Q_DISABLE_COPY(CommandScene)

    bool isReady() const { return mReady && mAccountId != 0; }
    EasAccountId accountId() const { return mAccountId; }
    QString path(const QString &name) const { return mFolder.filePath(name); }

    /** Runs a command in this process; its exit status. */
    static int run(const QStringList &arguments) { return CommandRunner::run(arguments); }
    static int run(const char *line) { return run(QString::fromUtf8(line).split(QLatin1Char('|'))); }

    /** A calendar as the engine makes it. */
    bool addCalendar(const QString &name, EasAccountId owner = 0) const
    {
        const mKCal::ExtendedCalendar::Ptr calendar(new mKCal::ExtendedCalendar(QTimeZone::systemTimeZone()));
        const mKCal::ExtendedStorage::Ptr storage = mKCal::ExtendedCalendar::defaultStorage(calendar);
        const mKCal::Notebook::Ptr notebook(new mKCal::Notebook(name, QString()));
        notebook->setAccount(QString::number(owner != 0 ? owner : mAccountId));
        notebook->setPluginName(ExchangeActiveSync::ExchangeCalendarPluginName);
        return storage->open() && storage->addNotebook(notebook);
    }

    /** A folder of contacts as the engine makes it. */
    bool addContactFolder(const QString &name, EasAccountId owner = 0) const
    {
        const std::unique_ptr<QtContacts::QContactManager> manager(ContactStoreManager::create(nullptr));
        QtContacts::QContactCollection collection;
        collection.setMetaData(QtContacts::QContactCollection::KeyName, name);
        collection.setExtendedMetaData(QStringLiteral("AccountId"), int(owner != 0 ? owner : mAccountId));
        collection.setExtendedMetaData(QStringLiteral("ApplicationName"), QStringLiteral("fennel-eas"));
        return manager && manager->saveCollection(&collection);
    }

    /** "start subject" of all that takes place in May 2024, as another process would find it. */
    QStringList may() const
    {
        EventStore store(mAccountId);
        if (!store.open())
            return {};
        QStringList lines;
        const QList<EventOccurrence> found = store.occurrences(QDate(2024, 5, 1), QDate(2024, 5, 31));
        for (const EventOccurrence &occurrence : found)
            lines.append(occurrence.start.toLocalTime().toString(QStringLiteral("dd HH:mm "))
                + occurrence.event->summary());
        return lines;
    }
    /** The number of the event of a subject. */
    QString event(const QString &subject) const
    {
        EventStore store(mAccountId);
        if (!store.open())
            return {};
        const QList<EventOccurrence> found = store.occurrences(QDate(2024, 5, 1), QDate(2024, 5, 31));
        for (const EventOccurrence &occurrence : found) {
            if (occurrence.event->summary() == subject)
                return EventStore::shortId(occurrence.event);
        }
        return {};
    }

private:
    QTemporaryDir mFolder;
    bool mReady;
    std::unique_ptr<AccountFactory> mAccounts;
    EasAccountId mAccountId = 0;
};
