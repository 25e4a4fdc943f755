// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>

/** What a command imports. */
namespace InputFile {

/** The whole of a file, or of standard input for "-"; false after an error was printed. */
bool read(const QString &path, QByteArray *data);

} // namespace InputFile
