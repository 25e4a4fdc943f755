// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/signalprinter.h"

#include "client/busvalue.h"
#include "client/pushstate.h"
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

/** An argument of a signal as people read it. */
QString text(const QString &signal, int position, const QVariant &value)
{
    if (position == statusPosition(signal))
        return StatusText::name(value.toInt());
    if (value.type() == QVariant::Map)
        return signal == QLatin1String("pushStateChanged")
            ? PushState::sentence(value.toMap())
            : QString::fromUtf8(
                QJsonDocument(QJsonObject::fromVariantMap(value.toMap())).toJson(QJsonDocument::Compact));
    if (value.type() != QVariant::List)
        return value.toString();
    QStringList elements;
    const QVariantList list = value.toList();
    for (const QVariant &element : list)
        elements.append(element.toString());
    return elements.join(QLatin1Char(','));
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
        const QVariant value = BusValue::plain(values.at(i));
        arguments.append(QJsonValue::fromVariant(value));
        texts.append(text(message.member(), i, value));
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
