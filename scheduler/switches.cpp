// SPDX-License-Identifier: LGPL-2.1-or-later
#include "switches.h"

#include <QFile>
#include <QSettings>

namespace {

QString keyOf(uint accountId, const QString &profile)
{
    return QStringLiteral("%1/%2").arg(profile).arg(accountId);
}

} // namespace

Switches::Switches(const QString &fileName)
    : mFileName(fileName)
{
}

bool Switches::isOn(uint accountId, const QString &profile) const
{
    const QSettings settings(mFileName, QSettings::IniFormat);
    return settings.status() == QSettings::NoError && settings.value(keyOf(accountId, profile)).toBool();
}

bool Switches::set(uint accountId, const QString &profile, bool on)
{
    QSettings settings(mFileName, QSettings::IniFormat);
    // What cannot be read would be lost with the first write.
    if (settings.status() != QSettings::NoError)
        return false;
    if (on)
        settings.setValue(keyOf(accountId, profile), true);
    else
        settings.remove(keyOf(accountId, profile));
    settings.sync();
    if (settings.status() != QSettings::NoError)
        return false;
    return !QFile::exists(mFileName)
        || QFile::setPermissions(mFileName, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}
