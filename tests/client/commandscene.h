// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/commandcontext.h"
#include "client/commandtable.h"
#include "client/contactbook.h"
#include "client/eventstore.h"
#include "common/exchangeactivesync.h"
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

    /** Runs a command as the command line would; its exit status. */
    static int run(QStringList arguments)
    {
        const Command *const command = CommandTable::take(arguments);
        return command ? command->run(CommandContext(QString::fromLatin1(command->name), arguments, {})) : -1;
    }
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
