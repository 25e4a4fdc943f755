// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/signalprinter.h"

#include "client/accountwatch.h"
#include "client/busvalue.h"
#include "client/policyanswer.h"
#include "client/policytable.h"
#include "client/pushstate.h"
#include "client/statustext.h"
#include "client/timetext.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDateTime>
#include <QJsonDocument>

#include <cstdio>

namespace {

QString statusText(const QVariantList &values, int position)
{
    return StatusText::name(values.at(position).toInt());
}

QString pushText(const QVariantList &values, int position)
{
    return PushState::sentence(values.at(position).toMap());
}

QString documentText(const QVariantList &values, int position)
{
    return QStringLiteral("policies: %1").arg(values.at(position).toMap().size());
}

QString failedText(const QVariantList &values, int position)
{
    FailedPolicyMap failed;
    const QVariantMap numbers = values.at(position).toMap();
    for (auto policy = numbers.cbegin(); policy != numbers.cend(); ++policy)
        failed.insert(policy.key().toInt(), *policy);
    return failed.isEmpty()
        ? QString()
        : QStringLiteral("not met: %1").arg(PolicyTable::failedPolicies(failed).join(QStringLiteral(", ")));
}

QString outcomeText(const QVariantList &values, int position)
{
    return QStringLiteral("policy: %1")
        .arg(PolicyAnswer::outcomeName(values.at(position - 2).toInt(), values.at(position).toInt()));
}

/** Arguments that people read better in words. */
struct Reading
{
    const char *signal;
    int position;
    QString (*text)(const QVariantList &values, int position);
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

QString text(const QString &signal, const QVariantList &values, int position)
{
    for (const Reading &reading : Readings) {
        if (reading.position == position && signal == QLatin1String(reading.signal))
            return reading.text(values, position);
    }
    const QVariant &value = values.at(position);
    return value.type() == QVariant::List ? value.toStringList().join(QLatin1Char(',')) : value.toString();
}

} // namespace

SignalPrinter::SignalPrinter(Output &output)
    : mOutput(output)
{
}

SignalPrinter::~SignalPrinter() = default;

bool SignalPrinter::start()
{
    const bool listening = QDBusConnection::sessionBus().connect(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        ExchangeActiveSync::EAS_DBUS_PATH_NAME,
        QString::fromLatin1(EasDBusInterfaceProxy::staticInterfaceName()), QString(), this,
        SLOT(onSignal(QDBusMessage)));
    if (!listening) {
        Output::error(QStringLiteral("cannot listen on the session bus"));
        return false;
    }
    followAccounts();
    followDaemon();
    return true;
}

void SignalPrinter::followAccounts()
{
    mAccounts = std::make_unique<AccountWatch>();
    connect(mAccounts.get(), &AccountWatch::added, this,
        [this](EasAccountId id) { print(QStringLiteral("accountAdded"), { qulonglong(id) }); });
    connect(mAccounts.get(), &AccountWatch::removed, this,
        [this](EasAccountId id) { print(QStringLiteral("accountRemoved"), { qulonglong(id) }); });
}

void SignalPrinter::followDaemon()
{
    auto *const daemon = new QDBusServiceWatcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(daemon, &QDBusServiceWatcher::serviceRegistered, this,
        [this] { print(QStringLiteral("daemonStarted")); });
    connect(daemon, &QDBusServiceWatcher::serviceUnregistered, this,
        [this] { print(QStringLiteral("daemonEnded")); });
}

void SignalPrinter::onSignal(const QDBusMessage &message)
{
    QVariantList values;
    for (const QVariant &argument : message.arguments())
        values.append(BusValue::plain(argument));
    print(message.member(), values);
}

void SignalPrinter::print(const QString &signal, const QVariantList &values)
{
    const QString time = TimeText::forPrograms(QDateTime::currentDateTime());
    if (mOutput.isJson()) {
        const QJsonObject line { { QStringLiteral("time"), time }, { QStringLiteral("signal"), signal },
            { QStringLiteral("arguments"), QJsonArray::fromVariantList(values) } };
        std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    } else {
        QStringList texts { signal };
        for (int i = 0; i < values.size(); ++i)
            texts.append(text(signal, values, i));
        // A line break that came from a server must not begin a line of its own.
        for (QString &part : texts)
            part = part.simplified();
        texts.removeAll(QString());
        mOutput.message(QStringLiteral("%1  %2").arg(TimeText::brief(time), texts.join(QLatin1Char(' '))));
    }
    std::fflush(stdout);
}
