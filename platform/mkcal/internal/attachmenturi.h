// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMap>
#include <QString>

/**
 * URIs of attachments that a service has: "x-mkcal-attachment:?key=value&...", sorted by key, so that equal
 * properties give equal URIs.
 */
namespace AttachmentUri {

QString nameKey();
QString sizeKey();
/** Empty for a URI of another scheme. */
QMap<QString, QString> items(const QString &uri);
QString uri(const QMap<QString, QString> &items);

} // namespace AttachmentUri
