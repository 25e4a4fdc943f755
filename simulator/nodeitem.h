// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/item.h"

namespace Simulator {

/** An item that is kept as its elements came: events, contacts and tasks, which have no other form here. */
class NodeItem : public Item
{
public:
    NodeItem(const QString &className, const QVector<WbxmlNode> &elements);

    QString className() const override { return mClassName; }
    QDateTime date() const override;
    ItemState state() const override { return mState; }
    QVector<WbxmlNode> elements(const ItemShape &) const override { return mElements; }
    QVector<WbxmlNode> changedElements(const ItemState &, const ItemShape &) const override
    {
        return mElements;
    }
    ItemPtr withChanges(const WbxmlNode &applicationData) const override;

private:
    QString mClassName;
    QVector<WbxmlNode> mElements;
    ItemState mState;
};

} // namespace Simulator
