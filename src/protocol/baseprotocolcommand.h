// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QSslError>
#include <QTimer>

#include <memory>

class Deadline;
class EasAccount;
class Network;
class QNetworkRequest;
class QSslCertificate;
class QSslKey;
class QUrlQuery;
class Request;

/**
 * One HTTP exchange with an account's server: one command, one finished() signal.
 *
 * The base builds the URL and the headers, posts the body through the NetworkManager, follows a server's
 * redirect, and turns what came back into a status. A command gives what is its own:
 *
 *   - commandName(), the "Cmd" of the URL;
 *   - encodeBody(), the WBXML (or other) body for the account's protocol version;
 *   - parseReply(), which reads the reply's body, keeps the result and calls setStatus() with the status
 *     that the server gave; false if the body could not be read, which makes the status -2;
 *   - texts(), the lines that name it in the log;
 *   - where needed configureCommandSpecificQueryValues() for more query items, prepareRequest() for more
 *     headers, logBody() for a body that is not WBXML.
 *
 * start() and handleFinished() then are the same in every command; a command whose exchange really differs
 * overrides them.
 *
 * The status is 0 (nothing recorded), a status of the server, 10000 plus a QNetworkReply::NetworkError, or -2
 * for what could not be built or read. finished(true) means that a reply came and was read, whatever status
 * the server put into it. finished(false) leaves results undefined.
 *
 * A command belongs to its request, its parent, which calls deleteLater() on it; it needs the account to
 * exist in the engine above it and, but for the version negotiation, to have a protocol version. It can be
 * started again after it finished. It never retries by itself. Main thread only.
 */
class BaseProtocolCommand : public QObject
{
    Q_OBJECT

public:
    explicit BaseProtocolCommand(EasAccountId accountId, QObject *parent = nullptr);
    ~BaseProtocolCommand() override;

    /** Takes the account, builds the request, encodes, logs and posts. */
    virtual void start();
    /** Aborts. finished(false) with status 10005 comes before this returns. */
    virtual void stop();
    /** Drops the reply and calls start() again. */
    virtual void retryCommand();
    virtual EasAccountId accountId() const { return mAccountId; }
    /** May be null: accounts vanish while commands run. */
    virtual EasAccount *account() const;

    int status() const { return mStatus; }
    /** Whether the last reply demands provisioning by its HTTP status, beside which status() is that of any
     * unknown HTTP error. */
    bool isToldToProvision() const { return mIsToldToProvision; }
    /** HTTP status of the last reply, 0 without one; status() tells apart only what Qt has a name for. */
    int httpStatus() const { return mHttpStatus; }
    /** Whether the last run ended because the server said nothing for longestWait(). */
    bool isGivenUp() const { return mIsGivenUp; }
    /** -1 while unknown, both. */
    qint64 bytesReceived() const { return mBytesReceived; }
    qint64 bytesTotal() const { return mBytesTotal; }
    /** The parent, if it is a request. */
    Request *parentRequest() const;

Q_SIGNALS:
    void started();
    void finished(bool success);

protected:
    /** The lines that name a command in the log. */
    struct ExchangeTexts
    {
        /** "Sending ... command via POST:" */
        const char *sending;
        /** "Received ... command reply:" */
        const char *received;
        /** What a reply with a transport error logs; null for nothing. */
        const char *replyError;
    };

    virtual QString commandName() const { return {}; }
    virtual ExchangeTexts texts() const;
    /** Appends to an empty body; false, after it logged the reason, if there is nothing to send. */
    virtual bool encodeBody(EasAccount &, QByteArray *) { return true; }
    /** False, after it logged the reason, if the headers cannot be sent. */
    virtual bool prepareRequest(QNetworkRequest &) { return true; }
    virtual bool parseReply(QNetworkReply *, const QByteArray &) { return true; }
    /** Dumps a body, as WBXML here, in the wire category. Called for sent and received bodies. */
    virtual void logBody(const QByteArray &body) const;

    /** A reply that grows larger is given up, because it may be without an end; bytes. */
    virtual qint64 maximumReplySize() const { return 64 * 1024 * 1024; }

    /** Milliseconds after which a server without an answer is given up; 0 for a command that waits as long as
     * its connection lasts. */
    virtual int longestWait() const { return 0; }

    virtual void configureCommandSpecificQueryValues(QUrlQuery &) {}
    virtual bool post(const QNetworkRequest &request, const QByteArray &body);
    virtual bool sendCustomRequest(
        const QNetworkRequest &request, const QByteArray &verb, const QByteArray &body);
    /** As post(), for a body that the network layer must not send again by itself. */
    bool postOnce(const QNetworkRequest &request, const QByteArray &body);
    virtual void handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    virtual void handleFinished(QNetworkReply *reply);
    virtual void handleError(QNetworkReply::NetworkError networkError);
    virtual void handleSslErrors(const QList<QSslError> &errors);

    bool isRunning() const { return mStarted; }
    /** The reply that is coming or being handled; null without one. */
    const QNetworkReply *reply() const { return mReply; }
    /** Marks the command as running; false if it is already. */
    bool begin();
    /** Lets the reply go and emits finished(), once a run. */
    void end(bool success);
    void setStatus(int status) { mStatus = status; }
    bool configureNetworkRequest(QNetworkRequest &request, const QString &command);
    bool getSslCredentials(
        const QString &path, const QString &password, QSslCertificate *certificate, QSslKey *key) const;
    bool connectReply() const;
    static void queryAddUser(QUrlQuery &query, const QString &name) { queryAdd(query, "User", name); }
    static void queryAddCommand(QUrlQuery &query, const QString &name) { queryAdd(query, "Cmd", name); }
    static void queryAddDeviceId(QUrlQuery &query, const QString &id) { queryAdd(query, "DeviceId", id); }
    static void queryAddDeviceType(QUrlQuery &query, const QString &type)
    {
        queryAdd(query, "DeviceType", type);
    }

private Q_SLOTS:
    void onReplyDownloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void onReplyFinished();
    void onReplyError(QNetworkReply::NetworkError networkError);
    void onReplyDestroyed();
    void onSslErrors(const QList<QSslError> &errors);

private:
    Network *network() const;
    static void queryAdd(QUrlQuery &query, const char *name, const QString &value);
    /** False, after a log line, while an exchange runs, and for all but Provision once a wipe of the account
     * was ordered. */
    bool mayBeSent() const;
    bool redirect();
    void dropReply();
    /** Notes what the status of a reply cannot say. */
    void noteHttpStatus(const QNetworkReply &reply);
    bool sendDevice(const QNetworkRequest &request, const QByteArray &verb, std::unique_ptr<QIODevice> body);
    bool takeReply(QNetworkReply *reply);
    void limitWait();
    void giveUp();

    int mStatus = 0;
    bool mIsToldToProvision = false;
    int mHttpStatus = 0;
    bool mStarted = false;
    QPointer<QNetworkReply> mReply;
    qint64 mBytesReceived = -1;
    qint64 mBytesTotal = -1;
    EasAccountId mAccountId;
    /** A redirected command goes out again from the event loop, so that it can be stopped in between. */
    QTimer mRedirectTimer;
    /** Of commands with a longestWait(). */
    std::unique_ptr<Deadline> mDeadline;
    bool mIsGivenUp = false;
};
