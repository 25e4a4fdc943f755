// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/postoffice.h"

#include "simulator/meetings.h"

#include <QDateTime>
#include <QSet>

namespace Simulator {
namespace {

QString boxName(const QString &address)
{
    return address.section(QLatin1Char('@'), 0, 0).toLower();
}

} // namespace

void PostOffice::addUser(const QString &name, Mailbox *mailbox)
{
    mMailboxes[boxName(name)] = mailbox;
}

Mailbox *PostOffice::mailboxOf(const QString &address) const
{
    const auto found = mMailboxes.find(boxName(address));
    return found == mMailboxes.end() ? nullptr : found->second;
}

void PostOffice::deliver(const QStringList &recipients, const QByteArray &message)
{
    QSet<Mailbox *> reached;
    for (const QString &recipient : recipients) {
        Mailbox *const mailbox = mailboxOf(recipient);
        if (!mailbox) {
            mOutbound.append({ recipient, message });
            continue;
        }
        if (reached.contains(mailbox))
            continue;
        reached.insert(mailbox);
        Meetings::arrive(
            *mailbox, mailbox->deliver(mailbox->inboxId(), message, QDateTime::currentDateTimeUtc()));
    }
}

} // namespace Simulator
