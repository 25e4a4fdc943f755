// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/recordedrequest.h"

#include <QUrlQuery>

namespace Simulator {
namespace {

QString headerLines(const HttpHeaders &headers)
{
    QString text;
    for (const auto &header : headers) {
        const bool secret = header.first.compare("Authorization", Qt::CaseInsensitive) == 0;
        text += QStringLiteral("  %1: %2\n")
                    .arg(QString::fromLatin1(header.first),
                        secret ? QStringLiteral("(hidden)") : QString::fromLatin1(header.second));
    }
    return text;
}

QString bodyText(const WbxmlNode &document, const QByteArray &body)
{
    if (!document.isNull())
        return document.toXml() + QLatin1Char('\n');
    return body.isEmpty() ? QString() : QStringLiteral("  (%1 bytes)\n").arg(body.size());
}

} // namespace

QByteArray headerValue(const HttpHeaders &headers, const QByteArray &name)
{
    for (const auto &header : headers) {
        if (header.first.compare(name, Qt::CaseInsensitive) == 0)
            return header.second;
    }
    return QByteArray();
}

QString RecordedRequest::queryItem(const QString &name) const
{
    return QUrlQuery(url).queryItemValue(name, QUrl::FullyDecoded);
}

QString RecordedRequest::dump() const
{
    QString text = QStringLiteral("C%1: %2 %3\n").arg(number).arg(verb, url.toString());
    text += headerLines(headers) + bodyText(document, body);
    text += QStringLiteral("S%1: %2\n").arg(number).arg(replyStatus);
    text += headerLines(replyHeaders) + bodyText(replyDocument, replyBody);
    return text;
}

} // namespace Simulator
