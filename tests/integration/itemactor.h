// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMap>
#include <QSet>
#include <QString>

class Dice;

/**
 * One class of items in a random simulation: what users of the server and of the device do with such items,
 * and what both sides then hold.
 */
class ItemActor
{
public:
    /** By the name of an item, which it has for life; all else of it that has to be the same on both sides.
     * Two items of one name are a duplicate and stand under two keys. */
    using State = QMap<QString, QString>;

    virtual ~ItemActor() = default;

    struct Edit
    {
        QString name; ///< of the edited item; empty if there was nothing to edit
        QString what; ///< for the story of a run
        /** A fault can lose it, or what is done to the item next, as long as both sides end equal. */
        bool isFragile = false;
    };

    /** One random edit, of none of the items that are named delicate. */
    virtual Edit editServer(Dice &dice, const QSet<QString> &delicate) = 0;
    virtual Edit editDevice(Dice &dice, const QSet<QString> &delicate) = 0;

    virtual State serverState() = 0;
    virtual State deviceState() = 0;
};
