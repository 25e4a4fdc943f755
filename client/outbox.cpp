// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/outbox.h"

#include "client/timetext.h"

#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <algorithm>

namespace {

// The command line's own; the engine neither reads nor writes them.
const auto ErrorField = QStringLiteral("fennel-easctl-error");
const auto TimeField = QStringLiteral("fennel-easctl-tried");

} // namespace

Outbox::Outbox(EasAccountId accountId)
    : mAccountId(accountId)
    , mBox(accountId)
{
}

QMailMessageIdList Outbox::messages() const
{
    QMailMessageIdList ids =
        QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(QMailAccountId(mAccountId))
            & QMailMessageKey::status(QMailMessage::Outbox, QMailDataComparator::Includes)
            & QMailMessageKey::status(QMailMessage::Draft, QMailDataComparator::Excludes));
    // The store hands out its numbers in ascending order.
    std::sort(ids.begin(), ids.end());
    return ids;
}

Outbox::State Outbox::state(const QMailMessageMetaData &message)
{
    const quint64 status = message.status();
    // The engine marks what it puts into Drafts, also where there is no such folder.
    if (status & QMailMessage::Draft)
        return State::Draft;
    return status & QMailMessage::Outbox ? State::Waiting : State::Other;
}

Outbox::Try Outbox::lastTry(const QMailMessageMetaData &message)
{
    return { QDateTime::fromString(message.customField(TimeField), Qt::ISODate),
        message.customField(ErrorField) };
}

bool Outbox::noteFailure(const QMailMessageId &id, const QString &error)
{
    QMailMessageMetaData message(id);
    message.setCustomField(ErrorField, error);
    message.setCustomField(TimeField, QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    return mBox.update(&message);
}

void Outbox::place(QMailMessageMetaData &message, QMailFolder::StandardFolder folder)
{
    mBox.place(message, folder);
    message.removeCustomField(ErrorField);
    message.removeCustomField(TimeField);
}

bool Outbox::moveToDrafts(const QMailMessageId &id)
{
    QMailMessageMetaData message(id);
    place(message, QMailFolder::DraftsFolder);
    return mBox.update(&message);
}

bool Outbox::take(const QMailMessageId &id)
{
    std::optional<QMailMessage> message = MailBox::read(id);
    if (!message || state(*message) == State::Waiting)
        return message.has_value();
    message->setDate(QMailTimeStamp::currentDateTime());
    place(*message, QMailFolder::OutboxFolder);
    return mBox.update(&*message);
}
