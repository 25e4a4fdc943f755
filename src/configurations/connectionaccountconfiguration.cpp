// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/connectionaccountconfiguration.h"

#include "application/base/logging.h"

namespace {
const QLatin1String secureScheme("https");
const QLatin1String plainScheme("http");
} // namespace

QString ConnectionAccountConfiguration::scheme() const
{
    return secureConnection() ? secureScheme : plainScheme;
}

void ConnectionAccountConfiguration::setScheme(const QString &scheme)
{
    if (scheme == secureScheme || scheme == plainScheme)
        setSecureConnection(scheme == secureScheme);
    else
        qCCritical(eas()) << "unexpected scheme" << scheme;
}

QString ConnectionAccountConfiguration::serverPath() const
{
    return QStringLiteral("/Microsoft-Server-ActiveSync");
}
