// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

#include <QDateTime>
#include <QMap>

#include <memory>
#include <optional>

namespace Simulator {

struct ItemShape;
struct UploadShape;

/** An attachment as a fetch by file reference gives it. */
struct ItemAttachment
{
    QString name;
    QByteArray contentType;
    QByteArray bytes;
    QString contentId;
    bool isInline = false;
    bool isMessage = false; ///< a whole message as attachment
};

/** What can change in an item, field by field, so that a device can be told what changed since it last
 * looked. */
using ItemState = QMap<QString, QByteArray>;

class Item;
using ItemPtr = std::shared_ptr<const Item>;

/**
 * One thing in a folder: a message, an event, a contact, a task.
 *
 * Items are immutable and shared between threads; a change makes a new item. Elements are given in the shape
 * of one protocol version.
 */
class Item
{
public:
    virtual ~Item() = default;

    /** "Email", "Calendar", "Contacts", as in the element Class. */
    virtual QString className() const = 0;
    /** What FilterType goes by; an invalid date is never filtered. */
    virtual QDateTime date() const = 0;
    virtual ItemState state() const = 0;
    /** All elements of ApplicationData or Properties. */
    virtual QVector<WbxmlNode> elements(const ItemShape &shape) const = 0;
    /** The elements that differ from what the device knows. */
    virtual QVector<WbxmlNode> changedElements(const ItemState &known, const ItemShape &shape) const = 0;
    /** The item with the fields that a client sent; null if they do not fit. */
    virtual ItemPtr withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const = 0;
    /** The same of one occurrence of a series; null if the series has no such occurrence. */
    virtual ItemPtr withInstance(
        const QString &instanceId, const WbxmlNode &applicationData, const UploadShape &upload) const;
    /** The series with that occurrence deleted. */
    virtual ItemPtr withoutInstance(const QString &instanceId, const UploadShape &upload) const;
    /** By the number in its file reference. */
    virtual std::optional<ItemAttachment> attachment(int number) const;
};

} // namespace Simulator
