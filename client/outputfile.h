// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QString>

class Output;

/**
 * Writes what a command saves or exports, and says so. Several documents may be written one after another. On
 * the stack of a command.
 */
class OutputFile
{
public:
    /** Replaces a file that is there only if told so. */
    OutputFile(Output &output, bool mayReplace);

    /** To a file, whole or not at all, or to standard output for "-" or no name. The exit status. */
    int write(const QString &path, const QByteArray &document, const char *contentType);

private:
    Output &mOutput;
    bool mMayReplace;
    QJsonArray mFiles;
};
