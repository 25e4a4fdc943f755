// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/ownprocess.h"

#include <QCoreApplication>
#include <QProcess>

namespace {
constexpr int Patience = 180000;
}

bool OwnProcess::bears(const Mark &mark)
{
    return qgetenv(mark.variable) == mark.value;
}

QString OwnProcess::run(const Mark &mark, const QStringList &test)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(mark.variable), QString::fromLatin1(mark.value));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), test);
    if (process.waitForFinished(Patience) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0)
        return QString();
    return QStringLiteral("the process of its own failed:\n") + QString::fromUtf8(process.readAll());
}
