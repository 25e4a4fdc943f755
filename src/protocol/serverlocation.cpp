// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/serverlocation.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"
#include "protocol/exchangelog.h"
#include "protocol/replyheaders.h"

namespace {

const QLatin1String Secure("https");
const QLatin1String Plain("http");
constexpr int HighestPort = 65535;

} // namespace

ServerLocation::ServerLocation(const QByteArray &header)
    : mUrl(QString::fromUtf8(header))
{
}

const char *ServerLocation::refusal(const ConnectionAccountConfiguration &configuration) const
{
    if (!mUrl.isValid() || mUrl.host().isEmpty() || mUrl.port(-1) > HighestPort)
        return "Refused a redirect that names no server";
    const QString scheme = mUrl.scheme();
    if (!scheme.isEmpty() && scheme != Secure && scheme != Plain)
        return "Refused a redirect to a scheme that is not of the web";
    if (scheme == Plain && configuration.scheme() == Secure)
        return "Refused a redirect from an encrypted connection to an open one";
    return nullptr;
}

bool ServerLocation::apply(ConnectionAccountConfiguration &configuration) const
{
    if (const char *const reason = refusal(configuration)) {
        qCCritical(eas()) << reason;
        return false;
    }
    qCInfo(eas()) << "new account serverAddress:" << mUrl.host() << "port:" << mUrl.port(-1)
                  << "scheme:" << mUrl.scheme();
    configuration.setServerAddress(mUrl.host());
    if (mUrl.port(-1) > 0)
        configuration.setPortNumber(mUrl.port(-1));
    if (!mUrl.scheme().isEmpty())
        configuration.setScheme(mUrl.scheme());
    return true;
}

bool ServerLocation::follow(const QNetworkReply &reply, const EasAccount *account)
{
    const QByteArray location = ReplyHeaders::value(reply, ProtocolUtils::HeaderXMSLocation);
    if (location.isEmpty())
        return false;
    if (!account) {
        qCCritical(eas()) << "No account";
        return false;
    }
    const auto configuration = account->connectionConfiguration();
    if (!configuration) {
        qCCritical(eas()) << "No connection config";
        return false;
    }
    qCDebug(eas()) << "we have a correct header" << ExchangeLog::withoutCredentials(location, account);
    return ServerLocation(location).apply(*configuration);
}
