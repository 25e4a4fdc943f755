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
    /** States of what the device changed. */
    const QHash<QString, ItemState> &changed() const { return mChanged; }

private:
    WbxmlNode add(const WbxmlNode &command);
    WbxmlNode change(const WbxmlNode &command);
    WbxmlNode remove(const WbxmlNode &command);
    WbxmlNode fetch(const WbxmlNode &command);
    int applyChange(const WbxmlNode &command);
    /** Puts the item in the place of the one that the device changed, by the policy for conflicts. */
    int replace(const QString &serverId, const ItemPtr &item, const ItemPtr &changed);
    int applyDelete(const QString &serverId);
    int deleteInstance(const WbxmlNode &command);
    bool isHere(const QString &serverId) const;
    /** An answer that names what it answers; nothing where there is nothing to complain of. */
    static WbxmlNode refusal(const WbxmlNode &command, int status);
    void rememberFiles(const QString &serverId, const WbxmlNode &data);
    QVector<WbxmlNode> filesOf(const QString &serverId) const;
    ItemPtr newItem(const WbxmlNode &data) const;
    UploadShape uploadShape() const { return { mContext.version(), mState.supported }; }
    /** What the script or a folder that is only to be read makes of each change; 0 lets it go on. */
    int statusBefore(const QString &id) const;
    int forcedStatus(const QString &id) const;
    static WbxmlNode answer(const QString &element, const QString &serverId, int status);

    const CommandContext &mContext;
    const MailFolder mFolder;
    CollectionState &mState;
    const WbxmlNode mCollection;
    int mCount = 0;
    QSet<QString> mDeleted;
    QHash<QString, ItemState> mChanged;
    /** Items with files that the device sent; it does not know their references yet. */
    QSet<QString> mWithNewFiles;
};

} // namespace Simulator
