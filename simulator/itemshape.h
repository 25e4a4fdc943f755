// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

#include <QDateTime>
#include <QSet>

#include <optional>

namespace Simulator {

struct BodyPreference
{
    int type = 0; ///< 1 plain text, 2 HTML, 4 MIME
    qint64 truncationSize = -1;
    bool allOrNone = false;
    int preview = -1;
};

/** The Options of a collection or of a fetch. */
struct SyncOptions
{
    int filterType = 0;
    int mimeSupport = 0; ///< 0 no MIME bodies, 1 for S/MIME messages, 2 for all
    int mimeTruncation = 8;
    int conflict = 1;
    QVector<BodyPreference> bodies;
    QVector<BodyPreference> bodyParts;

    static SyncOptions fromNode(const WbxmlNode &options);
    /** Earlier items do not belong to the collection's view; invalid for all items. */
    QDateTime filterStart(const QDateTime &now) const;
    /** Bytes of a MIME body that may be sent; -1 for all. */
    qint64 mimeLimit() const;
};

/** How an item is to look in one reply. */
struct ItemShape
{
    int version = 0;
    QString serverId; ///< attachments are referred to by it
    bool isDraft = false;
    SyncOptions options;
    /** A multipart reply puts the data of bodies here. */
    QVector<QByteArray> *parts = nullptr;
};

/** How the fields of an upload are to be taken. */
struct UploadShape
{
    int version = 0;
    /** The elements that the device named as its own at the start; without a value it named none. */
    std::optional<QSet<QString>> supported;

    /** Whether the element is the device's to remove, by leaving it out. */
    bool isManaged(const QString &element) const { return !supported || supported->contains(element); }
};

} // namespace Simulator
