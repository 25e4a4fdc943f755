// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>
#include <QVector>

namespace Simulator {

/** Protocol versions as integers that compare in order. */
enum ProtocolVersion : int {
    Version120 = 0x1200,
    Version121 = 0x1201,
    Version140 = 0x1400,
    Version141 = 0x1401,
    Version160 = 0x1600,
    Version161 = 0x1601,
};

/** All versions that the simulator speaks, oldest first. */
inline const QVector<int> &protocolVersions()
{
    static const QVector<int> versions { Version120, Version121, Version140, Version141, Version160,
        Version161 };
    return versions;
}

/** "12.1" for 0x1201. */
inline QString versionText(int version)
{
    return QStringLiteral("%1.%2").arg(version >> 8, 0, 16).arg(version & 0xFF);
}

/** 0x1201 for "12.1", 0 for a text that is not among protocolVersions(). */
inline int versionFromText(const QString &text)
{
    for (const int version : protocolVersions()) {
        if (versionText(version) == text.trimmed())
            return version;
    }
    return 0;
}

} // namespace Simulator
