// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/attachmenturi.h"

#include <QUrl>

namespace {

const QLatin1String scheme("x-mkcal-attachment:?");

} // namespace

QString AttachmentUri::nameKey()
{
    return QStringLiteral("name");
}

QString AttachmentUri::sizeKey()
{
    return QStringLiteral("size");
}

QMap<QString, QString> AttachmentUri::items(const QString &uri)
{
    QMap<QString, QString> result;
    if (!uri.startsWith(scheme, Qt::CaseInsensitive))
        return result;
    const QVector<QStringRef> items = uri.midRef(scheme.size()).split(QLatin1Char('&'), Qt::SkipEmptyParts);
    for (const QStringRef &item : items) {
        const int separator = item.indexOf(QLatin1Char('='));
        if (separator > 0) {
            result.insert(QUrl::fromPercentEncoding(item.left(separator).toUtf8()),
                QUrl::fromPercentEncoding(item.mid(separator + 1).toUtf8()));
        }
    }
    return result;
}

QString AttachmentUri::uri(const QMap<QString, QString> &items)
{
    QStringList parts;
    for (auto item = items.begin(); item != items.end(); ++item) {
        parts.append(QLatin1String(QUrl::toPercentEncoding(item.key())) + QLatin1Char('=')
            + QLatin1String(QUrl::toPercentEncoding(item.value())));
    }
    return scheme + parts.join(QLatin1Char('&'));
}
