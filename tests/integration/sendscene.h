// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/outgoingmail.h"
#include "support/synctestbed.h"

#include <QByteArrayList>
#include <qmailfolder.h>

/** What tests of sending share: a device of Alice, and a server that knows Bob and Carol, too. */
namespace SendScene {

class SendBed : public SyncTestBed
{
    Q_OBJECT

public:
    /** With a first sync behind it; the server keeps copies of what is sent. All commands are offered, or
     * these. */
    explicit SendBed(
        const QString &version = QStringLiteral("14.1"), const QStringList &commands = QStringList());

    bool isReady() const { return mIsReady; }
    /** Whether the server is to keep a copy of what is sent. */
    bool setSavesSent(bool saves);

    /** A message of the user, in the Outbox; its number. */
    quint64 write(const QMailMessage &message);
    /** Takes a message out of the Outbox again. */
    static bool discard(quint64 messageId);
    /** What the server will get. */
    QByteArray mimeOf(quint64 messageId);
    /** A message with files, "Text of the SUBJECT", that has come from somebody else. */
    QMailMessageId receive(const QString &subject, const QByteArrayList &files = {});
    /** Subjects of the messages in a folder of the device. */
    QStringList inFolder(QMailFolder::StandardFolder folder) const;
    /** Messages in the Inbox of a user of the server, in the order in which they came. */
    QByteArrayList received(const QString &user);

private:
    bool mIsReady = false;
};

} // namespace SendScene
