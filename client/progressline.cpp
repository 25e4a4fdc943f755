// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/progressline.h"

#include <cstdio>
#include <unistd.h>

namespace {

/** Waits shorter than this are not worth a word. */
constexpr int SilentSeconds = 2;
/** How often a log, which no line is written over in, is told of a wait. */
constexpr int SecondsBetweenLines = 10;
constexpr int BarWidth = 40;

} // namespace

ProgressLine::ProgressLine(bool isShown)
    : mIsShown(isShown)
    , mIsTerminal(isatty(STDERR_FILENO) != 0)
{
}

void ProgressLine::say(const QString &sentence)
{
    if (!mIsShown)
        return;
    clear();
    std::fprintf(stderr, "%s\n", sentence.toLocal8Bit().constData());
}

void ProgressLine::showWaiting(bool isAtWork, int seconds)
{
    const bool isDue = seconds >= SilentSeconds && (mIsTerminal || seconds % SecondsBetweenLines == 0);
    if (!isDue)
        return;
    const QString what = isAtWork ? QStringLiteral("waiting for the server")
                                  : QStringLiteral("waiting for the server or for an earlier request");
    const QString time = QStringLiteral("%1 s").arg(seconds);
    write(mShare.isEmpty() ? QStringLiteral("%1 (%2)").arg(what, time)
                           : QStringLiteral("%1 %2").arg(mShare, time));
}

void ProgressLine::showShare(qlonglong maximum, qlonglong current)
{
    const int filled = int(qBound<qlonglong>(0, current * BarWidth / maximum, BarWidth));
    mShare = QStringLiteral("[%1%2] %3 %")
                 .arg(QString(filled, QLatin1Char('#')), QString(BarWidth - filled, QLatin1Char('.')))
                 .arg(qBound<qlonglong>(0, current * 100 / maximum, 100), 3);
    write(mShare);
}

void ProgressLine::write(const QString &line)
{
    if (!mIsShown)
        return;
    const QByteArray bytes = line.toLocal8Bit();
    // What follows the end of the line is cleared, so that a shorter one leaves nothing of a longer one.
    std::fprintf(stderr, mIsTerminal ? "\r%s\033[K" : "%s\n", bytes.constData());
    std::fflush(stderr);
    mIsWritten = mIsTerminal;
}

void ProgressLine::clear()
{
    if (mIsWritten)
        std::fprintf(stderr, "\r\033[K");
    mIsWritten = false;
}
