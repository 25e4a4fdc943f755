// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>
#include <QTemporaryFile>

/** Has the user write a text in an editor: $VISUAL, $EDITOR, or vi. On the stack of a command. */
class TextEditor
{
public:
    TextEditor();
    Q_DISABLE_COPY(TextEditor)

    /** Begins with a text; another exit status than success after an error was printed. */
    int edit(const QString &start, QByteArray *text);
    /** Leaves what was written in its file, and says where, so that it need not be written again. Does
     * nothing if nothing was written. */
    void keep();

private:
    QTemporaryFile mFile;
    bool mIsWritten = false;
};
