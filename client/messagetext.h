// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/texteditor.h"

#include <QString>

class QCommandLineParser;

/**
 * The text of a message that is written: of --text, of the file or standard input that --body names, else of
 * standard input if that is no terminal, else of an editor. On the stack of a command.
 */
class MessageText
{
public:
    /** Adds the options; the parser outlives this object. */
    explicit MessageText(QCommandLineParser &parser);

    /** Whether an option says what the text is. */
    bool isGiven() const;
    /**
     * Reads the text, in front of an earlier one that it answers. The exit status; another one than success
     * after an error was printed.
     */
    int read(const QString &earlier, QString *text);
    /** The message could not be stored. */
    void keep() { mEditor.keep(); }

private:
    int readSource(const QString &earlier, QByteArray *octets, bool *holdsEarlier);
    int readEditor(const QString &earlier, QByteArray *octets);

    QCommandLineParser &mParser;
    TextEditor mEditor;
};
