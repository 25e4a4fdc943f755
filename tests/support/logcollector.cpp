// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/logcollector.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>

namespace {

QMutex mutex;
QList<LogCollector::Line> collected;

void collect(QtMsgType level, const QMessageLogContext &context, const QString &text)
{
    const QMutexLocker locker(&mutex);
    collected.append({ level, QString::fromLatin1(context.category), text });
}

bool holdsInOrder(const QString &text, const QStringList &pieces)
{
    int from = 0;
    for (const QString &piece : pieces) {
        const int found = text.indexOf(piece, from);
        if (found < 0)
            return false;
        from = found + piece.size();
    }
    return true;
}

} // namespace

LogCollector::LogCollector()
    : mPrevious(qInstallMessageHandler(collect))
{
    clear();
}

LogCollector::~LogCollector()
{
    qInstallMessageHandler(mPrevious);
}

QList<LogCollector::Line> LogCollector::lines() const
{
    const QMutexLocker locker(&mutex);
    return collected;
}

QStringList LogCollector::texts() const
{
    QStringList texts;
    const QList<Line> all = lines();
    for (const Line &line : all)
        texts.append(line.text);
    return texts;
}

QStringList LogCollector::texts(QtMsgType level) const
{
    QStringList texts;
    const QList<Line> all = lines();
    for (const Line &line : all) {
        if (line.level == level)
            texts.append(line.text);
    }
    return texts;
}

bool LogCollector::contains(const QString &piece) const
{
    return count(piece) > 0;
}

bool LogCollector::contains(QtMsgType level, const QStringList &pieces) const
{
    const QStringList candidates = texts(level);
    return std::any_of(candidates.cbegin(), candidates.cend(),
        [&pieces](const QString &text) { return holdsInOrder(text, pieces); });
}

int LogCollector::count(const QString &piece) const
{
    const QStringList all = texts();
    return int(std::count_if(
        all.cbegin(), all.cend(), [&piece](const QString &text) { return text.contains(piece); }));
}

void LogCollector::clear()
{
    const QMutexLocker locker(&mutex);
    collected.clear();
}
