// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/faultshim.h"
#include "support/buildpaths.h"

#include <QFile>

namespace {

/** The lines of a list without their numbers. */
QStringList entries(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList entries;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty())
            entries.append(QString::fromUtf8(line.mid(line.indexOf(' ') + 1)));
    }
    return entries;
}

} // namespace

FaultShim::FaultShim(const QString &folder, const QString &program)
{
    static int counter = 0;
    const QString prefix = folder + QStringLiteral("/fault-%1-").arg(++counter);
    mVariables.insert(QStringLiteral("FENNEL_FAULT_PROGRAM"), program);
    mVariables.insert(QStringLiteral("FENNEL_FAULT_STEPS"), prefix + QStringLiteral("steps"));
    mVariables.insert(QStringLiteral("FENNEL_FAULT_STATEMENTS"), prefix + QStringLiteral("statements"));
    setDatabase(QStringLiteral("fennel_eas.db"));
}

void FaultShim::setFiles(const QStringList &patterns)
{
    mVariables.insert(QStringLiteral("FENNEL_FAULT_FILES"), patterns.join(QLatin1Char(':')));
}

void FaultShim::setKinds(const QStringList &kinds)
{
    mVariables.insert(QStringLiteral("FENNEL_FAULT_KINDS"), kinds.join(QLatin1Char(',')));
}

void FaultShim::killAtStep(int number)
{
    mVariables.insert(QStringLiteral("FENNEL_FAULT_KILL_AT"), QString::number(number));
}

void FaultShim::setDatabase(const QString &pattern)
{
    mVariables.insert(QStringLiteral("FENNEL_FAULT_DATABASE"), pattern);
}

void FaultShim::failStatement(int number, StatementError error)
{
    mVariables.insert(QStringLiteral("FENNEL_FAULT_FAIL_AT"), QString::number(number));
    mVariables.insert(QStringLiteral("FENNEL_FAULT_FAIL_WITH"),
        error == StatementError::Full ? QStringLiteral("FULL") : QStringLiteral("IOERR"));
}

QProcessEnvironment FaultShim::environment(const QProcessEnvironment &base) const
{
    QProcessEnvironment environment = base;
    environment.insert(mVariables);
    QStringList preloaded { BuildPaths::faultShim() };
    if (base.contains(QStringLiteral("LD_PRELOAD")))
        preloaded.append(base.value(QStringLiteral("LD_PRELOAD")));
    environment.insert(QStringLiteral("LD_PRELOAD"), preloaded.join(QLatin1Char(':')));
    // The address sanitizer wants to be the first library; the shim passes all calls on to it.
    const QString options = base.value(QStringLiteral("ASAN_OPTIONS"));
    environment.insert(QStringLiteral("ASAN_OPTIONS"),
        (options.isEmpty() ? options : options + QLatin1Char(':'))
            + QStringLiteral("verify_asan_link_order=0"));
    return environment;
}

QStringList FaultShim::steps() const
{
    return entries(mVariables.value(QStringLiteral("FENNEL_FAULT_STEPS")));
}

QStringList FaultShim::statements() const
{
    return entries(mVariables.value(QStringLiteral("FENNEL_FAULT_STATEMENTS")));
}
