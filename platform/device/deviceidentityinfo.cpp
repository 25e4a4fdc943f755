// SPDX-License-Identifier: LGPL-2.1-or-later
#include <deviceidentityinfo.h>

#include <QDir>
#include <QFileInfo>
#include <QMessageAuthenticationCode>
#include <QSaveFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <QUuid>

namespace {

// With the identifier and the user's part it has to fit into the 32 characters of the protocol.
constexpr int ModelLength = 8;
constexpr int UidLength = 32;
const char Application[] = "fennel-eas device";

QString storedUidFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/fennel-eas/device-id");
}

} // namespace

DeviceIdentityInfo::DeviceIdentityInfo() = default;

// Read at each call: a device may learn its identity after the start.
QString DeviceIdentityInfo::deviceModel() const
{
    const char variable[] = "PLATFORM_DEVICE_MODEL";
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariable(variable)
                                               : QSysInfo::productType().left(ModelLength);
}

QString DeviceIdentityInfo::deviceUid() const
{
    const char variable[] = "PLATFORM_DEVICE_UID";
    if (qEnvironmentVariableIsSet(variable))
        return qEnvironmentVariable(variable);
    const QString uid = uidOfMachine(QSysInfo::machineUniqueId());
    return uid.isEmpty() ? uidInFile(storedUidFile()) : uid;
}

QString DeviceIdentityInfo::uidOfMachine(const QByteArray &machineId)
{
    if (machineId.isEmpty())
        return {};
    const QByteArray hash =
        QMessageAuthenticationCode::hash(Application, machineId, QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(UidLength));
}

QString DeviceIdentityInfo::uidInFile(const QString &fileName)
{
    QFile present(fileName);
    if (present.open(QIODevice::ReadOnly)) {
        const QByteArray uid = present.readAll().trimmed();
        if (uid.size() == UidLength)
            return QString::fromLatin1(uid);
    }
    const QByteArray made = QUuid::createUuid().toByteArray(QUuid::Id128);
    QDir().mkpath(QFileInfo(fileName).path());
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(made + '\n') < 0 || !file.commit())
        return {};
    return QString::fromLatin1(made);
}
