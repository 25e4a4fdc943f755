// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/replyheaders.h"

#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"

#include <QNetworkReply>

namespace {

/** Bytes; what is read from headers goes into account records. */
constexpr int MaximumSize = 4096;

} // namespace

QByteArray ReplyHeaders::value(const QNetworkReply &reply, const char *name)
{
    const QByteArray value = reply.rawHeader(name);
    if (value.size() <= MaximumSize)
        return value;
    qCCritical(easNetwork()) << "Header" << name << "is too long, taken for missing:" << value.size();
    return {};
}

QString ReplyHeaders::versions(const QNetworkReply &reply)
{
    return QString::fromUtf8(value(reply, ProtocolUtils::HeaderAsProtocolVersions));
}

QStringList ReplyHeaders::supportedCommands(const QNetworkReply &reply)
{
    const QString commands = QString::fromUtf8(value(reply, ProtocolUtils::HeaderAsProtocolCommands));
    return commands.split(QLatin1Char(','), Qt::SkipEmptyParts);
}

bool ReplyHeaders::isAnswer(const QNetworkReply &reply)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    return !status.isValid() || status.toInt() / 100 == 2;
}

bool ReplyHeaders::demandsProvisioning(const QNetworkReply &reply)
{
    constexpr int RetryWith = 449;
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == RetryWith
        && value(reply, ProtocolUtils::HeaderXMSLocation).isEmpty();
}
