// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/syncsummary.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/contactbook.h"
#include "client/daemonrequest.h"
#include "client/eventstore.h"
#include "client/mailbox.h"

#include <QtContacts/QContactTimestamp>

namespace {

using Items = QHash<QString, QString>;

Items mailOf(EasAccountId account)
{
    Items items;
    MailBox box(account);
    if (!box.open())
        return items;
    const QMailMessageIdList ids = box.allMessages();
    for (const QMailMessageId &id : ids)
        items.insert(QString::number(id.toULongLong()), QString());
    return items;
}

Items eventsOf(EasAccountId account)
{
    Items items;
    EventStore store(account);
    if (!store.open())
        return items;
    const KCalendarCore::Event::List events = store.events();
    // A series and its exceptions are one item.
    QMap<QString, QStringList> stamps;
    for (const KCalendarCore::Event::Ptr &event : events)
        stamps[event->uid()].append(
            event->instanceIdentifier() + event->lastModified().toString(Qt::ISODate));
    for (auto event = stamps.begin(); event != stamps.end(); ++event) {
        event->sort();
        items.insert(event.key(), event->join(QLatin1Char(' ')));
    }
    return items;
}

Items contactsOf(EasAccountId account)
{
    Items items;
    ContactBook book(account);
    QList<QtContacts::QContact> contacts;
    if (!book.open() || !book.contacts({}, &contacts))
        return items;
    for (const QtContacts::QContact &contact : qAsConst(contacts))
        items.insert(ContactBook::number(contact),
            contact.detail<QtContacts::QContactTimestamp>().lastModified().toString(Qt::ISODateWithMs));
    return items;
}

struct Kind
{
    const char *service;
    Items (*items)(EasAccountId account);
};

constexpr Kind AllKinds[] = { { "mail", &mailOf }, { "calendar", &eventsOf }, { "contacts", &contactsOf } };

const auto New = QStringLiteral("new");
const auto Changed = QStringLiteral("changed");
const auto Gone = QStringLiteral("gone");

} // namespace

SyncSummary::SyncSummary(CommandContext &context)
    : mContext(context)
{
    mTimer.start();
}

SyncSummary::Kinds SyncSummary::itemsOf(EasAccountId account) const
{
    const QJsonArray services =
        mContext.accounts().describe(account).value(QStringLiteral("services")).toArray();
    Kinds kinds;
    for (const Kind &kind : AllKinds) {
        if (services.contains(QLatin1String(kind.service)))
            kinds.insert(QLatin1String(kind.service), kind.items(account));
    }
    return kinds;
}

void SyncSummary::begin(EasAccountId account)
{
    mBefore.insert(account, itemsOf(account));
}

QJsonObject SyncSummary::difference(const Items &before, const Items &after)
{
    int added = 0;
    int changed = 0;
    for (auto item = after.cbegin(); item != after.cend(); ++item) {
        const auto old = before.constFind(item.key());
        added += int(old == before.cend());
        changed += int(old != before.cend() && *old != item.value());
    }
    int gone = 0;
    for (auto item = before.cbegin(); item != before.cend(); ++item)
        gone += int(!after.contains(item.key()));
    return { { New, added }, { Changed, changed }, { Gone, gone } };
}

QString SyncSummary::sentence(const QJsonObject &counts)
{
    QStringList kinds;
    for (auto kind = counts.begin(); kind != counts.end(); ++kind) {
        QStringList words;
        for (const QString &what : { New, Changed, Gone }) {
            const int count = kind.value().toObject().value(what).toInt();
            if (count > 0)
                words.append(QStringLiteral("%1 %2").arg(count).arg(what));
        }
        if (!words.isEmpty())
            kinds.append(QStringLiteral("%1 %2").arg(kind.key(), words.join(QStringLiteral(", "))));
    }
    return kinds.join(QStringLiteral("; "));
}

void SyncSummary::end(const DaemonRequest &request)
{
    const Kinds after = itemsOf(request.accountId());
    const Kinds before = mBefore.value(request.accountId());
    QJsonObject counts;
    for (auto kind = after.cbegin(); kind != after.cend(); ++kind)
        counts[kind.key()] = difference(before.value(kind.key()), kind.value());
    QJsonObject account = request.describe();
    account[QStringLiteral("id")] = QString::number(request.accountId());
    account[QStringLiteral("counts")] = counts;
    mAccounts.append(account);
    const bool isInStep = request.exitStatus() == ExitSuccess;
    QString text = isInStep ? QStringLiteral("account %1 is in step (%2 s)")
                            : QStringLiteral("account %1 is not in step (%2 s)");
    QString changes = sentence(counts);
    // Where a sync has failed, nobody knows what there is.
    if (changes.isEmpty() && isInStep)
        changes = QStringLiteral("nothing new here");
    if (!changes.isEmpty())
        text += QStringLiteral(": ") + changes;
    mSentences.append(text.arg(request.accountId()).arg(double(mTimer.elapsed()) / 1000.0, 0, 'f', 1));
}

void SyncSummary::print()
{
    mContext.output().done(mSentences.join(QLatin1Char('\n')),
        { { QStringLiteral("accounts"), mAccounts },
            { QStringLiteral("milliseconds"), double(mTimer.elapsed()) } });
}
