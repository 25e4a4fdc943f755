// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/texteditor.h"

#include "client/exitstatus.h"
#include "client/inputfile.h"
#include "client/output.h"

#include <QDir>

#include <cstdlib>

namespace {

QString editor()
{
    for (const char *variable : { "VISUAL", "EDITOR" }) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            return value;
    }
    return QStringLiteral("vi");
}

int fail(const QString &error)
{
    Output::error(error);
    return ExitFailure;
}

} // namespace

TextEditor::TextEditor()
    : mFile(QDir::temp().filePath(QStringLiteral("fennel-mail-XXXXXX.txt")))
{
}

int TextEditor::edit(const QString &start, QByteArray *text)
{
    const QByteArray octets = start.toUtf8();
    if (!mFile.open() || mFile.write(octets) != octets.size() || !mFile.flush())
        return fail(QStringLiteral("cannot write %1: %2").arg(mFile.fileName(), mFile.errorString()));
    QString quoted = mFile.fileName();
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    // The shell, since the variable may hold arguments. An interrupt is the editor's meanwhile.
    const QString command = editor() + QStringLiteral(" '") + quoted + QLatin1Char('\'');
    const int status = std::system(command.toLocal8Bit().constData());
    // An editor may have put a new file in the place of this one.
    const bool isRead = InputFile::read(mFile.fileName(), text);
    mIsWritten = isRead && *text != octets;
    if (status != 0) {
        keep();
        return fail(QStringLiteral("the editor failed; set EDITOR, or give the text with --body or --text"));
    }
    return isRead ? ExitSuccess : ExitFailure;
}

void TextEditor::keep()
{
    if (!mIsWritten)
        return;
    mFile.setAutoRemove(false);
    Output::note(QStringLiteral("what you wrote is in %1").arg(mFile.fileName()));
}
