// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/requestbed.h"

#include "application/mapping/easdatabase.h"
#include "requests/request.h"
#include "support/bearer.h"
#include "support/wbxmldocument.h"

#include <QNetworkSession>
#include <QSignalSpy>

RequestBed::RequestBed(const QStringList &commands)
    : mail(QSharedPointer<StubMailStorage>::create())
    , calendar(QSharedPointer<StubCalendarStorage>::create())
    , contacts(QSharedPointer<StubContactStorage>::create())
{
    Bearer::connectNetwork();
    // Where a test takes the account away, the engine would end for want of one.
    clock.held.insert(Clock::Timer::AccountsCheck);
    manager = ScriptedManager::install();
    account = manager->addAccount(Account);
    account->negotiated(commands);
    account->connection->port = server.port();
    account->mails = mail;
    account->events = calendar;
    account->people = contacts;
    EasDatabase::instance()->onAccountAdded(Account);
}

RequestBed::~RequestBed()
{
    ScriptedManager::uninstall();
}

bool RequestBed::isOnline() const
{
    const QNetworkSession *const session = manager->networkSession(Account);
    return session && session->state() == QNetworkSession::Connected;
}

void RequestBed::answer(const QByteArray &body)
{
    ScriptedAnswer answer;
    answer.headers = { { "Content-Type", "application/vnd.ms-sync.wbxml" } };
    answer.body = body;
    server.answer(answer);
}

void RequestBed::answerNever()
{
    ScriptedAnswer never;
    never.hang = true;
    server.answer(never);
}

QStringList RequestBed::sent() const
{
    QStringList bodies;
    for (const ReceivedRequest &request : server.requests())
        bodies.append(WbxmlDocument::outline(request.body));
    return bodies;
}

QString RequestBed::end(std::unique_ptr<RequestBed> &bed)
{
    QStringList wrong;
    if (bed->server.unexpected() > 0)
        wrong.append(QStringLiteral("%1 requests without an answer").arg(bed->server.unexpected()));
    if (bed->server.unusedAnswers() > 0)
        wrong.append(QStringLiteral("%1 answers without a request").arg(bed->server.unusedAnswers()));
    bed.reset();
    return wrong.join(QStringLiteral(", "));
}

int RequestBed::run(Request &request)
{
    if (!request.parent())
        request.setParent(RequestManager::instance());
    QSignalSpy completed(&request, &Request::requestCompleted);
    request.start();
    if (completed.isEmpty() && !completed.wait(60000))
        return -1000;
    return completed.count() == 1 ? request.status() : -1001;
}
