// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/signalprinter.h"

#include "client/statustext.h"
#include "client/timetext.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDateTime>
#include <QJsonDocument>

#include <cstdio>

namespace {

/** Where the status stands among the arguments of a signal; -1 for signals without one. */
int statusPosition(const QString &signal)
{
    return signal.endsWith(QLatin1String("Finished")) || signal == QLatin1String("syncCompleted")
        ? (signal == QLatin1String("getOofFinished") ? -1 : 2)
        : -1;
}

} // namespace

SignalPrinter::SignalPrinter(Output &output)
    : mOutput(output)
{
}

bool SignalPrinter::start()
{
    const bool listening = QDBusConnection::sessionBus().connect(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        ExchangeActiveSync::EAS_DBUS_PATH_NAME,
        QString::fromLatin1(EasDBusInterfaceProxy::staticInterfaceName()), QString(), this,
        SLOT(onSignal(QDBusMessage)));
    if (!listening)
        Output::error(QStringLiteral("cannot listen on the session bus"));
    return listening;
}

void SignalPrinter::onSignal(const QDBusMessage &message)
{
    const QString time = TimeText::forPrograms(QDateTime::currentDateTime());
    QJsonArray arguments;
    QStringList texts;
    const QVariantList values = message.arguments();
    for (int i = 0; i < values.size(); ++i) {
        arguments.append(QJsonValue::fromVariant(values.at(i)));
        texts.append(i == statusPosition(message.member()) ? StatusText::name(values.at(i).toInt())
                                                           : values.at(i).toString());
    }
    if (mOutput.isJson()) {
        const QJsonObject line { { QStringLiteral("time"), time },
            { QStringLiteral("signal"), message.member() }, { QStringLiteral("arguments"), arguments } };
        std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    } else {
        mOutput.message(QStringLiteral("%1  %2 %3")
                            .arg(TimeText::readable(time), message.member(), texts.join(QLatin1Char(' '))));
    }
    std::fflush(stdout);
}
