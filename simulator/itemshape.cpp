// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/itemshape.h"

#include <iterator>

namespace Simulator {
namespace {

BodyPreference preferenceFromNode(const WbxmlNode &node)
{
    BodyPreference preference;
    preference.type = node.text(QStringLiteral("Type")).toInt();
    if (node.has(QStringLiteral("TruncationSize")))
        preference.truncationSize = node.text(QStringLiteral("TruncationSize")).toLongLong();
    preference.allOrNone = node.text(QStringLiteral("AllOrNone")) == QLatin1String("1");
    if (node.has(QStringLiteral("Preview")))
        preference.preview = node.text(QStringLiteral("Preview")).toInt();
    return preference;
}

QVector<BodyPreference> preferences(const WbxmlNode &options, const QString &name)
{
    QVector<BodyPreference> found;
    const QVector<WbxmlNode> nodes = options.all(name);
    for (const WbxmlNode &node : nodes)
        found.append(preferenceFromNode(node));
    return found;
}

int number(const WbxmlNode &options, const QString &name, int otherwise)
{
    return options.has(name) ? options.text(name).toInt() : otherwise;
}

} // namespace

SyncOptions SyncOptions::fromNode(const WbxmlNode &options)
{
    SyncOptions result;
    result.filterType = number(options, QStringLiteral("AirSync:FilterType"), result.filterType);
    result.mimeSupport = number(options, QStringLiteral("AirSync:MIMESupport"), result.mimeSupport);
    result.mimeTruncation = number(options, QStringLiteral("AirSync:MIMETruncation"), result.mimeTruncation);
    result.conflict = number(options, QStringLiteral("AirSync:Conflict"), result.conflict);
    result.bodies = preferences(options, QStringLiteral("AirSyncBase:BodyPreference"));
    result.bodyParts = preferences(options, QStringLiteral("AirSyncBase:BodyPartPreference"));
    return result;
}

QDateTime SyncOptions::filterStart(const QDateTime &now) const
{
    switch (filterType) {
    case 1:
        return now.addDays(-1);
    case 2:
        return now.addDays(-3);
    case 3:
        return now.addDays(-7);
    case 4:
        return now.addDays(-14);
    case 5:
        return now.addMonths(-1);
    case 6:
        return now.addMonths(-3);
    case 7:
        return now.addMonths(-6);
    default:
        return QDateTime();
    }
}

qint64 SyncOptions::mimeLimit() const
{
    static const qint64 limits[] = { 0, 4096, 5120, 7168, 10240, 20480, 51200, 102400 };
    const bool limited = mimeTruncation >= 0 && mimeTruncation < int(std::size(limits));
    return limited ? limits[mimeTruncation] : -1;
}

} // namespace Simulator
