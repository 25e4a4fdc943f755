// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deviceinformation.h"

#include "application/base/logging.h"

#include <QDeviceInfo>
#include <QLocale>
#include <QRegularExpression>

#include <deviceidentityinfo.h>

namespace {

/** The protocol's limit. */
constexpr int maximalIdLength = 32;
const QString fallbackPrefix = QStringLiteral("JP");
const QString defaultUser = QStringLiteral("defaultuser");

QDeviceInfo &deviceInfo()
{
    static QDeviceInfo info;
    return info;
}

const DeviceIdentityInfo &identityInfo()
{
    static const DeviceIdentityInfo info;
    return info;
}

const QString &userName()
{
    static const QString name = qEnvironmentVariable("USER", defaultUser);
    return name;
}

QString &cachedDeviceId()
{
    static QString id;
    return id;
}

QString daemonVersion()
{
    return QStringLiteral(FENNEL_EAS_VERSION);
}

} // namespace

QString DeviceInformation::model()
{
    return deviceInfo().productName();
}

QString DeviceInformation::deviceModel()
{
    return identityInfo().deviceModel();
}

QString DeviceInformation::imei()
{
    return identityInfo().deviceUid();
}

QString DeviceInformation::friendlyName()
{
    return deviceInfo().model();
}

QString DeviceInformation::os()
{
    return QStringLiteral("%1 v%2 Fw%3")
        .arg(deviceInfo().operatingSystemName(), deviceInfo().version(QDeviceInfo::Os),
            deviceInfo().version(QDeviceInfo::Firmware));
}

QString DeviceInformation::osLanguage()
{
    return QLocale::languageToString(QLocale::system().language());
}

QString DeviceInformation::userAgent()
{
    return QStringLiteral("HalcyonOS/4.0-EAS-%1").arg(daemonVersion());
}

QString DeviceInformation::deviceId()
{
    if (cachedDeviceId().isEmpty())
        refreshDeviceId();
    return cachedDeviceId();
}

void DeviceInformation::refreshDeviceId()
{
    cachedDeviceId() = composeDeviceId(deviceModel(), imei(), userName());
}

QString DeviceInformation::composeDeviceId(
    const QString &deviceModel, const QString &imei, const QString &userName)
{
    QString prefix = deviceModel;
    if (prefix.isEmpty()) {
        qCWarning(eas()) << "device model is empty, using hardcoded device ID prefix instead";
        prefix = fallbackPrefix;
    }
    const QString suffix = userName == defaultUser ? QString() : QString::number(qHash(userName, 0));
    static const QRegularExpression forbidden(QStringLiteral("[^a-zA-Z0-9]"));
    prefix.remove(forbidden);
    const int room = qMax(0, maximalIdLength - prefix.length() - suffix.length());
    return (prefix + imei.left(room) + suffix).left(maximalIdLength);
}

QString DeviceInformation::prodId()
{
    const QString prodId =
        QStringLiteral("-//%1 %2//EAS Calendar %3//EN")
            .arg(deviceInfo().operatingSystemName(), deviceInfo().model(), daemonVersion());
    qCDebug(eas()) << "Updated prodId:" << prodId;
    return prodId;
}
