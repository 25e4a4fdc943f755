// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/exchangeserver.h"

#include "simulator/dispatcher.h"
#include "simulator/httpfrontend.h"
#include "simulator/protocolversion.h"
#include "simulator/tlscertificate.h"

#include <QMutexLocker>

#include <utility>

namespace Simulator {

class ExchangeServer::Private
{
public:
    Private()
        : dispatcher(script)
    {
        enterUser(QStringLiteral("user"));
    }

    /** Into the address list. */
    void enterUser(const QString &name)
    {
        dispatcher.changeSettings(
            [&name](ServerSettings &settings) { settings.directory.add(Person::user(name)); });
    }

    Script script;
    Dispatcher dispatcher;
    std::unique_ptr<HttpFrontend> frontend;
    TlsCertificate tls;
    Scheme scheme = Http;
    bool hasOwnUsers = false;

    mutable QMutex requestsMutex;
    QVector<RecordedRequest> requests;

    /** Keeps the request; one that is known by its number is replaced. */
    void record(const RecordedRequest &request)
    {
        const QMutexLocker lock(&requestsMutex);
        for (auto known = requests.rbegin(); known != requests.rend(); ++known) {
            if (known->number == request.number) {
                *known = request;
                return;
            }
        }
        if (request.replyStatus == 0)
            requests.append(request);
    }
};

ExchangeServer::ExchangeServer(QObject *parent)
    : QObject(parent)
    , d(new Private)
{
    qRegisterMetaType<Simulator::RecordedRequest>();
    // Emitted by way of the event loop: a spy or a test's slot must not run in a server thread.
    d->dispatcher.onReceived = [this](const RecordedRequest &request) {
        d->record(request);
        QMetaObject::invokeMethod(
            this, [this, request] { Q_EMIT requestReceived(request); }, Qt::QueuedConnection);
    };
    d->dispatcher.onReplied = [this](const RecordedRequest &request) {
        d->record(request);
        QMetaObject::invokeMethod(
            this, [this, request] { Q_EMIT replied(request); }, Qt::QueuedConnection);
    };
}

ExchangeServer::~ExchangeServer()
{
    stop();
}

bool ExchangeServer::start(Scheme scheme, quint16 port)
{
    stop();
    d->scheme = scheme;
    if (scheme == Https && d->tls.key.isEmpty())
        d->tls = TlsCertificate::generate();
    const TlsCertificate tls = scheme == Https ? d->tls : TlsCertificate();
    if (scheme == Https && tls.key.isEmpty())
        return false;
    d->frontend = std::make_unique<HttpFrontend>(
        [this](const HttpRequest &request) { return d->dispatcher.answer(request); });
    if (d->frontend->start(port, tls.certificate, tls.key))
        return true;
    d->frontend.reset();
    return false;
}

void ExchangeServer::stop()
{
    d->dispatcher.stopWaits();
    d->frontend.reset();
    d->dispatcher.resumeWaits();
}

bool ExchangeServer::isListening() const
{
    return bool(d->frontend);
}

quint16 ExchangeServer::port() const
{
    return d->frontend ? d->frontend->port() : 0;
}

QUrl ExchangeServer::url() const
{
    QUrl url(QStringLiteral("http://127.0.0.1/Microsoft-Server-ActiveSync"));
    url.setScheme(d->scheme == Https ? QStringLiteral("https") : QStringLiteral("http"));
    url.setPort(port());
    return url;
}

QSslCertificate ExchangeServer::certificate() const
{
    return QSslCertificate(d->tls.certificate);
}

Mailbox &ExchangeServer::addUser(const QString &name, const QString &password)
{
    if (!std::exchange(d->hasOwnUsers, true))
        changeDirectory([](Directory &directory) { directory.clear(); });
    d->enterUser(name);
    return d->dispatcher.addUser(name, password);
}

void ExchangeServer::setPassword(const QString &name, const QString &password)
{
    d->dispatcher.setPassword(name, password);
}

bool ExchangeServer::hasUser(const QString &name) const
{
    return d->dispatcher.hasUser(name);
}

Mailbox &ExchangeServer::mailbox(const QString &user)
{
    return d->dispatcher.mailbox(user);
}

ServerPolicies ExchangeServer::policies(const QString &user) const
{
    return d->dispatcher.policies(user);
}

void ExchangeServer::changePolicies(const std::function<void(ServerPolicies &)> &change, const QString &user)
{
    d->dispatcher.changePolicies(user, change);
}

void ExchangeServer::changeDirectory(const std::function<void(Directory &)> &change)
{
    d->dispatcher.changeSettings([&change](ServerSettings &settings) { change(settings.directory); });
}

void ExchangeServer::setVersions(const QStringList &versions)
{
    QVector<int> numbers;
    for (const QString &version : versions)
        numbers.append(versionFromText(version));
    d->dispatcher.changeSettings([&numbers](ServerSettings &settings) { settings.versions = numbers; });
}

void ExchangeServer::setCommands(const QStringList &commands)
{
    d->dispatcher.changeSettings([&commands](ServerSettings &settings) { settings.commands = commands; });
}

void ExchangeServer::setWindowSize(int items)
{
    d->dispatcher.changeSettings([items](ServerSettings &settings) { settings.windowSize = items; });
}

void ExchangeServer::setReportStaleHierarchy(bool report)
{
    d->dispatcher.changeSettings(
        [report](ServerSettings &settings) { settings.reportStaleHierarchy = report; });
}

void ExchangeServer::setEmptyReplies(bool empty)
{
    d->dispatcher.changeSettings([empty](ServerSettings &settings) { settings.emptyReplies = empty; });
}

void ExchangeServer::setHeartbeatLimits(int shortest, int longest)
{
    d->dispatcher.changeSettings([shortest, longest](ServerSettings &settings) {
        settings.shortestHeartbeat = shortest;
        settings.longestHeartbeat = longest;
    });
}

void ExchangeServer::setMaxPingFolders(int count)
{
    d->dispatcher.changeSettings([count](ServerSettings &settings) { settings.maxPingFolders = count; });
}

void ExchangeServer::setLargestMessage(qint64 bytes)
{
    d->dispatcher.changeSettings([bytes](ServerSettings &settings) { settings.largestMessage = bytes; });
}

void ExchangeServer::setMailboxQuota(qint64 bytes)
{
    d->dispatcher.changeSettings([bytes](ServerSettings &settings) { settings.mailboxQuota = bytes; });
}

QVector<OutboundMail> ExchangeServer::outbound() const
{
    return d->dispatcher.outbound();
}

void ExchangeServer::expirePings()
{
    d->dispatcher.expireWaits();
}

void ExchangeServer::forgetDevices()
{
    d->dispatcher.forgetDevices();
}

Expectation ExchangeServer::expect(const QString &command)
{
    return d->script.expect(command);
}

void ExchangeServer::letThrough(const QStringList &commands)
{
    d->script.letThrough(commands);
}

void ExchangeServer::overrideNext(const QString &command, const Override &answer, int times)
{
    d->script.overrideNext(command, answer, times);
}

void ExchangeServer::clearScript()
{
    d->script.clear();
}

QStringList ExchangeServer::failures() const
{
    return d->script.failures(false);
}

QStringList ExchangeServer::finish() const
{
    return d->script.failures(true);
}

int ExchangeServer::remainingSteps() const
{
    return d->script.remainingSteps();
}

QVector<RecordedRequest> ExchangeServer::requests(const QString &command) const
{
    const QMutexLocker lock(&d->requestsMutex);
    QVector<RecordedRequest> found;
    for (const RecordedRequest &request : qAsConst(d->requests)) {
        if (command.isEmpty() || request.command == command)
            found.append(request);
    }
    return found;
}

void ExchangeServer::clearRequests()
{
    const QMutexLocker lock(&d->requestsMutex);
    d->requests.clear();
}

} // namespace Simulator
