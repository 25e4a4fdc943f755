// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QStringList>

/**
 * The command line client as a process of its own, as a user runs it. Events of the test process go on
 * meanwhile, so that a server in it can answer.
 */
class CommandLine
{
public:
    /** Runs one command; the text is its standard input. The exit status, or -1 if it never ended or crashed.
     */
    int run(const QStringList &arguments, const QByteArray &input = QByteArray());
    /** Runs a command with --json; null unless it succeeded. */
    QJsonDocument json(const QStringList &arguments);

    /** What the last command printed, errors included. */
    QByteArray output() const { return mOutput; }

private:
    QByteArray mOutput;
};
