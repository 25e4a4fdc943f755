// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/itemshape.h"
#include "simulator/mailbox.h"
#include "simulator/serverpolicies.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <optional>

namespace Simulator {

/** What a device knows of the folders. */
struct HierarchyState
{
    QString key;
    QVector<MailFolder> known;
    QString previousKey; ///< the key that led to @ref key
    QVector<MailFolder> previousKnown; ///< with that key
    WbxmlNode lastRequest;
    WbxmlNode lastReply; ///< given again when lastRequest comes once more
};

/** What a device knows of the items of a folder, with the way back to what it knew one answer ago. */
class KnownItems
{
public:
    bool contains(const QString &id) const { return mItems.contains(id); }
    ItemState value(const QString &id) const { return mItems.value(id); }
    /** Null if the device does not know the item. The pointer holds until the next change. */
    const ItemState *find(const QString &id) const;
    const QHash<QString, ItemState> &all() const { return mItems; }

    void insert(const QString &id, const ItemState &state);
    void remove(const QString &id);
    /** From the next change on there is a new way back; the old one stays until then, or until settle(). */
    void mark() { mIsMarked = true; }
    void settle();
    /** Back to what it was at the mark. */
    void goBack();

private:
    void remember(const QString &id);

    QHash<QString, ItemState> mItems;
    /** Of what changed since the mark. A copy of the whole would make each window as slow as the folder is
     * large. */
    QHash<QString, std::optional<ItemState>> mBefore;
    bool mIsMarked = false;
};

/** What a device knows of one folder's items. */
struct CollectionState
{
    QString key;
    KnownItems known; ///< marked at previousKey
    SyncOptions options; ///< hold until the device sends others
    std::optional<QSet<QString>> supported; ///< as named with key "0", see UploadShape

    QString previousKey;
    WbxmlNode lastRequest;
    WbxmlNode lastReply;
    QSet<QString> lastDeletes; ///< what the last request deleted
    QHash<QString, ItemState> lastChanges; ///< what it changed, and how it is since

    /** Server identifiers of what the device added, by ClientId; kept so that nothing is added twice. */
    QHash<QString, QString> added;
};

/** What the last Ping of a device asked for, for one that leaves it out. */
struct PingState
{
    int heartbeat = 0; ///< seconds, 0 before the first
    QStringList folders;
};

/** What the last search of a device found, for its later parts. */
struct SearchState
{
    WbxmlNode query; ///< what was looked for, or the identifier of the search
    QStringList found; ///< server identifiers, in the order of the results
};

/** All that the server keeps of one device of one user. */
struct DeviceState
{
    HierarchyState hierarchy;
    PingState ping;
    SearchState search;
    QHash<QString, CollectionState> collections;
    ProvisionState provision;
    /** ClientIds of the messages that the device has sent. */
    QSet<QString> sentClientIds;
};

} // namespace Simulator
