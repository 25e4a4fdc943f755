// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mailstorage.h"

#include <QList>

/**
 * Holds fetched files of one message, so that they go to the mail store together: it writes a message as a
 * whole, with all that it has already, for each file by itself.
 *
 * Owned by the request that fetches them, which flushes before it ends. Main thread only.
 */
class FetchedFiles
{
public:
    /** Takes a file; those of another message, or too many bytes, are stored first. False if that failed. */
    bool take(MailStorage &storage, quint64 messageId, const MessagePartContent &file);
    /** Stores what is held. False, logged, if the storage refused it; then it is held no more. */
    bool flush(MailStorage &storage);

private:
    quint64 mMessageId = 0;
    QList<MessagePartContent> mFiles;
    qint64 mBytes = 0;
};
