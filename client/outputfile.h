// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>

/** Where a command writes what it saves or exports. */
namespace OutputFile {

/** Writes a file whole or not at all; one that is there only if told so. False after an error was printed. */
bool write(const QString &path, const QByteArray &data, bool overwrite);

/** To a file, or to standard output for "-" or no name. */
bool writeOrPrint(const QString &path, const QByteArray &data, bool overwrite);

} // namespace OutputFile
