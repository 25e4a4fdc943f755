// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchedfiles.h"

#include "application/base/logging.h"

#include <utility>

namespace {

/** More than this is not held in memory. */
constexpr qint64 maxHeldBytes = 4 * 1024 * 1024;

} // namespace

bool FetchedFiles::take(MailStorage &storage, quint64 messageId, const MessagePartContent &file)
{
    const bool fits = messageId == mMessageId && mBytes + file.octets.size() <= maxHeldBytes;
    if (!fits && !flush(storage))
        return false;
    mMessageId = messageId;
    mFiles.append(file);
    mBytes += file.octets.size();
    return mBytes < maxHeldBytes || flush(storage);
}

bool FetchedFiles::flush(MailStorage &storage)
{
    if (mFiles.isEmpty())
        return true;
    const QList<MessagePartContent> files = std::exchange(mFiles, {});
    mBytes = 0;
    if (storage.updateMessageParts(mMessageId, files))
        return true;
    qCCritical(eas()) << "failed to update attachment";
    return false;
}
