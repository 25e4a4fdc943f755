// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/inputfile.h"

#include "client/output.h"

#include <QFile>

#include <cstdio>

bool InputFile::read(const QString &path, QByteArray *data)
{
    QFile file(path);
    const bool isOpen =
        path == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (isOpen)
        *data = file.readAll();
    if (isOpen && file.error() == QFileDevice::NoError)
        return true;
    Output::error(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    return false;
}
