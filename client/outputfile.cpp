// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/outputfile.h"

#include "client/exitstatus.h"
#include "client/output.h"

#include <QFileInfo>
#include <QSaveFile>

OutputFile::OutputFile(Output &output, bool mayReplace)
    : mOutput(output)
    , mMayReplace(mayReplace)
{
}

int OutputFile::write(const QString &path, const QByteArray &document, const char *contentType)
{
    if (path.isEmpty() || path == QLatin1String("-")) {
        mOutput.document(document, contentType);
        return ExitSuccess;
    }
    if (QFileInfo::exists(path) && !mMayReplace) {
        Output::error(QStringLiteral("%1 exists; use --force to replace it").arg(path));
        return ExitFailure;
    }
    QSaveFile file(path);
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(document) == document.size() && file.commit();
    if (!isWritten) {
        Output::error(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
        return ExitFailure;
    }
    mFiles.append(QJsonObject { { QStringLiteral("path"), QFileInfo(path).absoluteFilePath() },
        { QStringLiteral("size"), document.size() } });
    mOutput.done(QStringLiteral("%1 bytes written to %2").arg(document.size()).arg(path),
        { { QStringLiteral("files"), mFiles } });
    return ExitSuccess;
}
