// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"

#include <QStringList>

#include <map>

namespace Simulator {

/** A message for somebody who has no mailbox on this server. */
struct OutboundMail
{
    QString recipient;
    QByteArray message;
};

/**
 * Brings messages to the users of one server, by their addresses.
 *
 * An address is a user's if it is the user's name, or if the parts before "@" are equal; case does not count.
 * Belongs to the Dispatcher, which lets one thread at a time use it.
 */
class PostOffice
{
public:
    /** The mailbox has to outlive this object or the next clear(). */
    void addUser(const QString &name, Mailbox *mailbox);
    void clear() { mMailboxes.clear(); }

    /** Null for an address of nobody here. */
    Mailbox *mailboxOf(const QString &address) const;

    /** Puts the message into the Inbox of each recipient, once into each, and an invitation into the calendar
     * as well; what is for other people is kept in outbound(). */
    void deliver(const QStringList &recipients, const QByteArray &message);
    const QVector<OutboundMail> &outbound() const { return mOutbound; }

private:
    std::map<QString, Mailbox *> mMailboxes; ///< by the name before "@" in lower case
    QVector<OutboundMail> mOutbound;
};

} // namespace Simulator
