// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * What is going on, on standard error: a line that is written over on a terminal, lines one below the other
 * elsewhere. Silent unless it is to be shown. On the stack of a command.
 */
class ProgressLine : public QObject
{
    Q_OBJECT

public:
    explicit ProgressLine(bool isShown);

    /** A sentence that stays. */
    void say(const QString &sentence);
    /** Each second of a wait; isAtWork tells a request under way from one that is queued. */
    void showWaiting(bool isAtWork, int seconds);
    /** Takes the line off the terminal. */
    void clear();

public Q_SLOTS:
    void showShare(qlonglong maximum, qlonglong current);

private:
    void write(const QString &line);

    bool mIsShown;
    bool mIsTerminal;
    /** Whether something stands on the terminal's line. */
    bool mIsWritten = false;
    QString mShare;
};
