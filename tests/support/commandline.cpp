// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/commandline.h"

#include "support/buildpaths.h"
#include "support/waiting.h"

#include <QProcess>

namespace {
constexpr int Patience = 180000;
}

int CommandLine::run(const QStringList &arguments, const QByteArray &input)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(BuildPaths::binary(QStringLiteral("bin/fennel-easctl")), arguments);
    process.write(input);
    process.closeWriteChannel();
    const bool ended =
        Waiting::until([&process] { return process.state() == QProcess::NotRunning; }, Patience);
    mOutput = process.readAll();
    return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QJsonDocument CommandLine::json(const QStringList &arguments)
{
    const int status = run(QStringList(QStringLiteral("--json")) + arguments);
    return status == 0 ? QJsonDocument::fromJson(mOutput) : QJsonDocument();
}
