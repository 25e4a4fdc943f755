// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/nodeitem.h"

#include <algorithm>

namespace Simulator {

NodeItem::NodeItem(const QString &className, const QVector<WbxmlNode> &elements)
    : mClassName(className)
    , mElements(elements)
{
}

ItemPtr NodeItem::withChanges(const WbxmlNode &applicationData, const UploadShape &) const
{
    QVector<WbxmlNode> changed = mElements;
    for (const WbxmlNode &field : applicationData.children()) {
        const auto known = std::find_if(changed.begin(), changed.end(),
            [&field](const WbxmlNode &candidate) { return candidate.name() == field.name(); });
        if (known != changed.end())
            *known = field;
        else
            changed.append(field);
    }
    return std::make_shared<NodeItem>(mClassName, changed);
}

} // namespace Simulator
