// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/itemshape.h"
#include "simulator/mailbox.h"

#include <QHash>
#include <QSet>

namespace Simulator {

/** What a device knows of the folders. */
struct HierarchyState
{
    QString key;
    QVector<MailFolder> known;
    QString previousKey; ///< the key that led to @ref key
    WbxmlNode lastReply; ///< given again when previousKey comes once more
};

using KnownItems = QHash<QString, ItemState>;

/** What a device knows of one folder's items. */
struct CollectionState
{
    QString key;
    KnownItems known;
    SyncOptions options; ///< hold until the device sends others

    QString previousKey;
    KnownItems knownBefore; ///< at previousKey
    WbxmlNode lastRequest;
    WbxmlNode lastReply;
    QSet<QString> lastDeletes; ///< what the last request deleted

    /** Server identifiers of what the device added, by ClientId; kept so that nothing is added twice. */
    QHash<QString, QString> added;
};

/** All that the server keeps of one device of one user. */
struct DeviceState
{
    HierarchyState hierarchy;
    QHash<QString, CollectionState> collections;
};

} // namespace Simulator
