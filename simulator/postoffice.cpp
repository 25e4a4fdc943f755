// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/postoffice.h"

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

void PostOffice::deliver(const QStringList &recipients, const QByteArray &message)
{
    QSet<Mailbox *> reached;
    for (const QString &recipient : recipients) {
        const auto found = mMailboxes.find(boxName(recipient));
        if (found == mMailboxes.end()) {
            mOutbound.append({ recipient, message });
            continue;
        }
        Mailbox *const mailbox = found->second;
        if (reached.contains(mailbox))
            continue;
        reached.insert(mailbox);
        mailbox->deliver(mailbox->inboxId(), message, QDateTime::currentDateTimeUtc());
    }
}

} // namespace Simulator
