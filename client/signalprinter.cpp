// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/signalprinter.h"

#include "client/busvalue.h"
#include "client/policyanswer.h"
#include "client/policytable.h"
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

QString statusText(const QVariant &value)
{
    return StatusText::name(value.toInt());
}

QString pushText(const QVariant &value)
{
    return PushState::sentence(value.toMap());
}

QString documentText(const QVariant &value)
{
    return QStringLiteral("policies: %1").arg(value.toMap().size());
}

QString failedText(const QVariant &value)
{
    FailedPolicyMap failed;
    const QVariantMap numbers = value.toMap();
    for (auto policy = numbers.cbegin(); policy != numbers.cend(); ++policy)
        failed.insert(policy.key().toInt(), *policy);
    return failed.isEmpty()
        ? QStringLiteral("all met")
        : QStringLiteral("not met: %1").arg(PolicyTable::failedPolicies(failed).join(QStringLiteral(", ")));
}

QString outcomeText(const QVariant &value)
{
    return QStringLiteral("policy: %1").arg(PolicyAnswer::outcomeName(value.toInt()));
}

/** Arguments that people read better in words. */
struct Reading
{
    const char *signal;
    int position;
    QString (*text)(const QVariant &value);
};

constexpr Reading Readings[] = {
    { "requestFinished", 2, &statusText },
    { "syncCompleted", 2, &statusText },
    { "searchMessagesFinished", 2, &statusText },
    { "searchGALFinished", 2, &statusText },
    { "findMessagesFinished", 2, &statusText },
    { "provisionRequestFinished", 2, &statusText },
    { "provisionRequestFinished", 3, &failedText },
    { "provisionRequestFinished", 4, &outcomeText },
    { "policyDocumentReceived", 2, &documentText },
    { "pushStateChanged", 1, &pushText },
};

QString text(const QString &signal, int position, const QVariant &value)
{
    for (const Reading &reading : Readings) {
        if (reading.position == position && signal == QLatin1String(reading.signal))
            return reading.text(value);
    }
    return value.type() == QVariant::List ? value.toStringList().join(QLatin1Char(',')) : value.toString();
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
