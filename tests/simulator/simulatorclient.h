// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/exchangeserver.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>

#include <memory>

/** What came back for one request. */
struct PlainReply
{
    int status = 0;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    Simulator::WbxmlNode document; ///< null if the body is no document
    Simulator::HttpHeaders headers;

    QByteArray header(const QByteArray &name) const { return Simulator::headerValue(headers, name); }
};

/** A client without any knowledge of its own: it sends the documents that a test writes. */
class SimulatorClient
{
public:
    explicit SimulatorClient(
        const Simulator::ExchangeServer &server, const QString &version = QStringLiteral("14.1"));

    void setCredentials(const QString &user, const QString &password);
    void setDevice(const QString &id) { mDevice = id; }
    /** Of the folder that sync() works on, which 12.0 wants to be told; "Email" at first. */
    void setClass(const QString &className) { mClass = className; }
    void setVersion(const QString &version) { mVersion = version; }
    const QString &version() const { return mVersion; }
    void setHeader(const QByteArray &name, const QByteArray &value) { mHeaders.append({ name, value }); }
    void setQuery(const QString &query) { mQuery = query; }

    PlainReply options();
    PlainReply post(const QString &command, const Simulator::WbxmlNode &document);
    PlainReply post(const QString &command, const QString &xml);
    PlainReply postBytes(const QString &command, const QByteArray &body);
    /** Sends without waiting. */
    QNetworkReply *send(const QString &command, const QString &xml);
    static PlainReply finished(QNetworkReply *reply);

    /** A Sync of one collection; @p inner goes between GetChanges and the end. Returns the Collection of the
     * reply. */
    Simulator::WbxmlNode sync(const QString &folder, const QString &key, const QString &inner = QString());
    /** Key after the first exchange with key "0". */
    QString firstKey(const QString &folder, const QString &inner = QString());
    static QString syncXml(const QString &folder, const QString &key, const QString &inner = QString());

private:
    QNetworkRequest request(const QString &command) const;

    const Simulator::ExchangeServer &mServer;
    QNetworkAccessManager mManager;
    QString mVersion;
    QString mUser = QStringLiteral("user");
    QString mPassword = QStringLiteral("secret");
    QString mClass = QStringLiteral("Email");
    QString mDevice = QStringLiteral("device1");
    QString mQuery;
    Simulator::HttpHeaders mHeaders;
};

/** A message of the size of a small one. */
QByteArray sampleMessage(const QString &subject, const QByteArray &body = "Hello");
