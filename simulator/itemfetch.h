// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/command.h"

namespace Simulator {

/** One Fetch of an ItemOperations request: an item by its place or long identifier, or an attachment. */
class ItemFetch
{
public:
    /** With @p parts the data goes there, for a multipart reply; null keeps it in the document. */
    ItemFetch(const CommandContext &context, const WbxmlNode &fetch, QVector<QByteArray> *parts);

    /** The Fetch of the reply. */
    WbxmlNode run();

private:
    WbxmlNode reply(int status) const;
    WbxmlNode fetchItem(const QString &serverId);
    WbxmlNode fetchAttachment(const QString &reference);
    WbxmlNode attachmentReply(const ItemAttachment &attachment);

    const CommandContext &mContext;
    const WbxmlNode mFetch;
    QVector<QByteArray> *mParts;
};

/** Identifier of an item as search results give it. */
QString longId(const QString &serverId);
QString serverIdOfLongId(const QString &longId);

} // namespace Simulator
