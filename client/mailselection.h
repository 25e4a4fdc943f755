// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/mailbox.h"
#include "client/selection.h"

/** A command's account, its mail, and the messages that it names. */
class MailSelection : public Selection<MailBox>
{
public:
    using Selection::Selection;

    const QMailMessageIdList &messages() const { return mMessages; }
    QMailMessageId message() const { return mMessages.value(0); }
    /** The numbers of the messages, as JSON and the bus have them. */
    QJsonArray numbers() const;

    /** False, with exitStatus() set and an error printed, if one does not exist. */
    bool select(const QStringList &numbers);
    /** All messages of a folder that are marked as read, or that are not. */
    bool selectOfFolder(const QString &folder, bool unread);
    bool findFolder(const QString &folder, QMailFolderId *id);

private:
    QMailMessageIdList mMessages;
};
