// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/buildpaths.h"

QString BuildPaths::source(const QString &path)
{
    return QStringLiteral(FENNEL_SOURCE_DIR "/") + path;
}

QString BuildPaths::binary(const QString &path)
{
    return QStringLiteral(FENNEL_BINARY_DIR "/") + path;
}

QString BuildPaths::plugins()
{
    return QStringLiteral(FENNEL_TEST_PLUGIN_PATH);
}

QString BuildPaths::faultShim()
{
    return QStringLiteral(FENNEL_FAULT_SHIM);
}
