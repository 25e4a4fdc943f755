// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <qmailaddress.h>
#include <qmailmessage.h>

/** A message that is to go out, before it is in the mail store: what the user said, read and checked. */
struct OutgoingMessage
{
    QList<QMailAddress> to;
    QList<QMailAddress> cc;
    QList<QMailAddress> bcc;
    QString subject;
    QString text;
    /** Paths of files that go along. */
    QStringList files;

    /** The message that is answered or passed on; invalid for one that begins by itself. */
    QMailMessageId source;
    QMailMessage::ResponseType response = QMailMessage::NoResponse;
    /** The server adds the source, below the text of a reply or with its files to a forward. */
    bool isSourceAdded = false;
    /** Parts of the source that go along as they are on the device. */
    QList<QMailMessagePart> parts;
};
