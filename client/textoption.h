// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include <optional>

/**
 * A text that a command is given in one of two ways: "--message TEXT", or "--message-file FILE" with "-" for
 * standard input. On the stack of a command.
 */
class TextOption
{
public:
    /** Adds both options to the parser, which has to outlive this. */
    TextOption(QCommandLineParser &parser, const QString &name);

    /** Once the parser has parsed; false, after an error, if both were given or a file cannot be read. */
    bool read();
    /** Nothing if none was given. A file's last line end does not belong to it. */
    std::optional<QString> text() const { return mText; }

private:
    QCommandLineParser &mParser;
    const QCommandLineOption mTextOption;
    const QCommandLineOption mFileOption;
    std::optional<QString> mText;
};
