// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/**
 * Keeps every log line that is written while it lives, from all threads, and keeps them off the terminal.
 *
 * One at a time: the handler that was there before comes back with the destructor.
 */
class LogCollector
{
public:
    struct Line
    {
        QtMsgType level;
        QString category;
        QString text;
    };

    LogCollector();
    ~LogCollector();
    Q_DISABLE_COPY(LogCollector)

    QList<Line> lines() const;
    /** The texts of all lines, or of those of one level. */
    QStringList texts() const;
    QStringList texts(QtMsgType level) const;

    /** Whether a line holds these pieces in this order. */
    bool contains(const QString &piece) const;
    bool contains(QtMsgType level, const QStringList &pieces) const;
    int count(const QString &piece) const;
    void clear();

private:
    QtMessageHandler mPrevious;
};
