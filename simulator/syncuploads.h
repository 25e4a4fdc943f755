// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/command.h"

namespace Simulator {

/**
 * What a client sends up in one collection: adds, changes, deletes and fetches.
 *
 * Answers as published: each add and fetch, of the others those that failed.
 */
class SyncUploads
{
public:
    SyncUploads(const CommandContext &context, const MailFolder &folder, CollectionState &state,
        const WbxmlNode &collection);

    /** The children of Responses. */
    QVector<WbxmlNode> run();
    int count() const { return mCount; }
    const QSet<QString> &deleted() const { return mDeleted; }

private:
    WbxmlNode add(const WbxmlNode &command);
    WbxmlNode change(const WbxmlNode &command);
    WbxmlNode remove(const WbxmlNode &command);
    WbxmlNode fetch(const WbxmlNode &command);
    int applyChange(const QString &serverId, const WbxmlNode &data);
    int applyDelete(const QString &serverId);
    ItemPtr newItem(const WbxmlNode &data) const;
    UploadShape uploadShape() const { return { mContext.version(), mState.supported }; }
    /** What the script or a folder that is only to be read makes of each change; 0 lets it go on. */
    int statusBefore(const QString &id) const;
    int forcedStatus(const QString &id) const;
    WbxmlNode failure(const QString &element, const QString &serverId, int status) const;

    const CommandContext &mContext;
    const MailFolder mFolder;
    CollectionState &mState;
    const WbxmlNode mCollection;
    int mCount = 0;
    QSet<QString> mDeleted;
};

} // namespace Simulator
