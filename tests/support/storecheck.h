// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

/** What stands in database files and in lists, told as text that is empty if all is well. */
namespace StoreCheck {

/** The mapping database of the daemon. */
QString mappingFile();

/** Runs the query on a connection of its own; each row's first column, sorted, or the error. */
QStringList ask(const QString &file, const QString &sql);

QString difference(const char *what, const QStringList &found, const QStringList &wanted);
/** Whatever SQLite's own check of the file says. */
QString damage(const QString &file);

} // namespace StoreCheck
