// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/directory.h"
#include "simulator/mailbox.h"
#include "simulator/postoffice.h"
#include "simulator/script.h"
#include "simulator/serverpolicies.h"

#include <QObject>
#include <QSslCertificate>

#include <memory>

namespace Simulator {

/**
 * A simulated Exchange: an HTTP or HTTPS server for ActiveSync 12.0 to 16.1 over mailboxes in memory.
 *
 * It listens on 127.0.0.1 alone and works in threads of its own; every method may be called from any thread
 * and none waits for a client. The signals are delivered in the thread that the object lives in, so that a
 * QSignalSpy can wait for them. Create it, set it up, start() it; its state lives until it is destroyed, also
 * over stop() and start().
 */
class ExchangeServer : public QObject
{
    Q_OBJECT

public:
    explicit ExchangeServer(QObject *parent = nullptr);
    ~ExchangeServer() override;

    enum Scheme { Http, Https };
    /** Listens; port 0 takes any free one. */
    bool start(Scheme scheme = Http, quint16 port = 0);
    /** Drops all connections and ends the threads. */
    void stop();
    bool isListening() const;
    quint16 port() const;
    /** "http://127.0.0.1:PORT/Microsoft-Server-ActiveSync" */
    QUrl url() const;
    /** The certificate of the Https scheme, signed by itself, made by start(). */
    QSslCertificate certificate() const;

    /** A user with an own mailbox. The first one replaces the default user "user" with the password "secret".
     */
    Mailbox &addUser(const QString &name, const QString &password);
    void setPassword(const QString &name, const QString &password);
    bool hasUser(const QString &name) const;
    /** The mailbox of that user, or of the first one. There must be such a user. */
    Mailbox &mailbox(const QString &user = QString());

    /** What the server asks of the devices of that user, or of the first one; nothing at first. */
    ServerPolicies policies(const QString &user = QString()) const;
    void changePolicies(const std::function<void(ServerPolicies &)> &change, const QString &user = QString());

    /** Changes the global address list, which has an entry for each user. */
    void changeDirectory(const std::function<void(Directory &)> &change);

    /** Versions that OPTIONS announces and the server accepts, "12.0" to "16.1"; all of them at first. */
    void setVersions(const QStringList &versions);
    /** Commands that OPTIONS announces and the server accepts; all that it knows at first. */
    void setCommands(const QStringList &commands);
    /** Items in a reply where the client does not say; 100 at first. */
    void setWindowSize(int items);
    /** Sync answers with status 12 while the device has not fetched the last changes of the folders. */
    void setReportStaleHierarchy(bool report);
    /** From 12.1 a Sync that changes nothing is answered with an empty body; on at first. */
    void setEmptyReplies(bool empty);
    /** Seconds that a Ping may wait, others get status 5; 60 to 3540 at first. */
    void setHeartbeatLimits(int shortest, int longest);
    /** More folders in a Ping get status 6; 200 at first. */
    void setMaxPingFolders(int count);
    /** A larger message is refused with status 115, HTTP 507 below 14.0; 0, as at first: none is. */
    void setLargestMessage(qint64 bytes);
    /** A message that would make the mailbox of its sender larger is refused with status 113, HTTP 507 below
     * 14.0; 0, as at first: none is. */
    void setMailboxQuota(qint64 bytes);
    /** What users have sent to people without a mailbox here. */
    QVector<OutboundMail> outbound() const;
    /** The heartbeats of all Pings that wait are over now. */
    void expirePings();
    /** Forgets all keys of all devices, as a server that lost its state. */
    void forgetDevices();

    /** Begins or continues a dialogue, see Script. */
    Expectation expect(const QString &command);
    void letThrough(const QStringList &commands);
    void overrideNext(const QString &command, const Override &answer, int times = 1);
    void overrideAll(const QString &command, const Override &answer) { overrideNext(command, answer, -1); }
    /** Ends the dialogue and all overrides; the record of requests stays. */
    void clearScript();
    /** What went against the dialogue, or against the protocol as the server reads it. */
    QStringList failures() const;
    /** failures() and the steps that the client never reached; asked when the test is over. */
    QStringList finish() const;
    int remainingSteps() const;

    /** All requests so far, or those of one command ("OPTIONS", "Sync"...). */
    QVector<RecordedRequest> requests(const QString &command = QString()) const;
    void clearRequests();

Q_SIGNALS:
    void requestReceived(const Simulator::RecordedRequest &request);
    /** The answer is on its way; not emitted for a dropped or hanging request. */
    void replied(const Simulator::RecordedRequest &request);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Simulator
