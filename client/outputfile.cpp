// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/outputfile.h"

#include "client/output.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>

bool OutputFile::write(const QString &path, const QByteArray &data, bool overwrite)
{
    if (QFileInfo::exists(path) && !overwrite) {
        Output::error(QStringLiteral("%1 exists; use --force to replace it").arg(path));
        return false;
    }
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit())
        return true;
    Output::error(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return false;
}

bool OutputFile::writeOrPrint(const QString &path, const QByteArray &data, bool overwrite)
{
    if (!path.isEmpty() && path != QLatin1String("-"))
        return write(path, data, overwrite);
    const auto size = static_cast<std::size_t>(data.size());
    if (std::fwrite(data.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return true;
    Output::error(QStringLiteral("cannot write to standard output"));
    return false;
}
