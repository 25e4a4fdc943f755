// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wholeitem.h"

namespace Simulator {

/** An item that is kept as its elements came: tasks and notes, which have no other form here. */
class NodeItem : public WholeItem
{
public:
    NodeItem(const QString &className, const QVector<WbxmlNode> &elements);

    QString className() const override { return mClassName; }
    QDateTime date() const override { return QDateTime(); }
    QVector<WbxmlNode> elements(const ItemShape &) const override { return mElements; }
    ItemPtr withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const override;

private:
    QString mClassName;
    QVector<WbxmlNode> mElements;
};

} // namespace Simulator
