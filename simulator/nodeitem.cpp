// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/nodeitem.h"

#include <algorithm>
#include <atomic>

namespace Simulator {
namespace {

std::atomic<quint64> lastSerial { 0 };

} // namespace

NodeItem::NodeItem(const QString &className, const QVector<WbxmlNode> &elements)
    : mClassName(className)
    , mElements(elements)
    , mState { { QStringLiteral("Content"), QByteArray::number(++lastSerial) } }
{
}

QDateTime NodeItem::date() const
{
    const WbxmlNode all(QStringLiteral("Calendar:"), mElements);
    // A series never grows too old for a filter.
    if (all.has(QStringLiteral("Recurrence")))
        return QDateTime();
    QDateTime end = QDateTime::fromString(
        all.text(QStringLiteral("EndTime")).remove(QLatin1Char('Z')), QStringLiteral("yyyyMMddTHHmmss"));
    end.setTimeSpec(Qt::UTC);
    return end;
}

ItemPtr NodeItem::withChanges(const WbxmlNode &applicationData) const
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
