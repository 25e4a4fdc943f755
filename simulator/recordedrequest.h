// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

#include <QMetaType>
#include <QPair>
#include <QUrl>

namespace Simulator {

using HttpHeaders = QVector<QPair<QByteArray, QByteArray>>;

/** Value of the first header of that name, whatever its case. */
QByteArray headerValue(const HttpHeaders &headers, const QByteArray &name);

/** One exchange as the server saw it. The reply's part is filled once it is on its way. */
struct RecordedRequest
{
    int number = 0; ///< counts from 1 over the life of the server
    QString verb; ///< "OPTIONS", "POST"
    QUrl url; ///< path and query as sent
    QString command; ///< "OPTIONS" or the value of the query item `Cmd`
    QString user; ///< of the credentials, without a domain
    QString deviceId;
    int version = 0; ///< 0x1200 to 0x1601, 0 if the header is missing or none of them
    HttpHeaders headers;
    QByteArray body;
    WbxmlNode document; ///< null for an empty or unreadable body
    QString documentError; ///< why the body could not be read

    int replyStatus = 0; ///< HTTP status, 0 while there is no reply or none is sent
    HttpHeaders replyHeaders;
    QByteArray replyBody;
    WbxmlNode replyDocument; ///< of a multipart reply its first part

    QByteArray header(const QByteArray &name) const { return headerValue(headers, name); }
    QByteArray replyHeader(const QByteArray &name) const { return headerValue(replyHeaders, name); }
    QString queryItem(const QString &name) const;
    /** Both sides as text for people, without the credentials. */
    QString dump() const;
};

} // namespace Simulator

Q_DECLARE_METATYPE(Simulator::RecordedRequest)
