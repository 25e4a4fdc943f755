// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/buildpaths.h"

#include <QDir>
#include <QString>

/**
 * The published schemas and tables are not part of the tree. They are looked for beside it, or where the
 * environment variable FENNEL_PROTOCOL_SCHEMAS says.
 */
inline QDir protocolSchemas()
{
    const QString wanted = qEnvironmentVariable("FENNEL_PROTOCOL_SCHEMAS");
    return QDir(wanted.isEmpty() ? BuildPaths::source(QStringLiteral("../shared/protocol/schemas")) : wanted);
}

/** The token table beside the folder of the schemas. */
inline QString publishedTokenTable()
{
    return protocolSchemas().filePath(QStringLiteral("../wbxml-codepages.tsv"));
}
