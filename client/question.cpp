// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/question.h"

#include "client/output.h"

#include <QTextStream>

#include <cstdio>
#include <unistd.h>

bool Question::confirm(const QString &question)
{
    if (!isatty(STDIN_FILENO) || !isatty(STDERR_FILENO))
        return true;
    QTextStream(stderr) << Output::printable(question) << QStringLiteral(" [y/N] ");
    const QString answer = QTextStream(stdin).readLine().trimmed();
    return answer.compare(QLatin1String("y"), Qt::CaseInsensitive) == 0
        || answer.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0;
}
