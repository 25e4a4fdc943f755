// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** Where the tree that is tested stands. One source file knows, so that the others compile alike everywhere.
 */
namespace BuildPaths {

/** A file of the source tree, by its path from the top. */
QString source(const QString &path = QString());
/** A file of the build tree, by its path from the top. */
QString binary(const QString &path = QString());
/** Folders of plugins for QT_PLUGIN_PATH, separated by colons. */
QString plugins();
/** The library that tests preload to kill a process or to make its statements fail. */
QString faultShim();

} // namespace BuildPaths
