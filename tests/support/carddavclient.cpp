// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/carddavclient.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QLocale>
#include <QNetworkReply>
#include <QTimer>
#include <QXmlStreamReader>

#include <memory>

namespace {

const QString collection = QStringLiteral("/SOGo/dav/%1/Contacts/personal/");
constexpr int clockTimeout = 60000;

} // namespace

CardDavClient::CardDavClient(const QString &host, int port, const QString &user, const QString &password)
    : mBook(QStringLiteral("http://%1:%2").arg(host).arg(port) + collection.arg(user))
    , mAuthorization("Basic " + (user + QLatin1Char(':') + password).toUtf8().toBase64())
{
}

CardDavClient::Answer CardDavClient::send(
    const QByteArray &verb, const QString &address, const QByteArray &body, const QByteArray &type)
{
    QNetworkRequest request(address.isEmpty() ? mBook : mBook.resolved(QUrl(address)));
    request.setRawHeader("Authorization", mAuthorization);
    request.setRawHeader("Content-Type", type);
    request.setRawHeader("Depth", "1");
    const std::unique_ptr<QNetworkReply> reply(mNetwork.sendCustomRequest(request, verb, body));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return { reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(),
        reply->rawHeader("Date") };
}

QMap<QString, QString> CardDavClient::report(const QString &element)
{
    const Answer answer = send("REPORT", QString(),
        "<?xml version=\"1.0\"?><C:addressbook-query xmlns=\"DAV:\" "
        "xmlns:C=\"urn:ietf:params:xml:ns:carddav\">"
        "<prop><getetag/><C:address-data/></prop><C:filter/></C:addressbook-query>");
    QMap<QString, QString> found;
    QXmlStreamReader xml(answer.body);
    QString address;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("href"))
            address = xml.readElementText();
        else if (xml.name() == element)
            found.insert(address, xml.readElementText());
    }
    return answer.status == 207 && !xml.hasError() ? found : QMap<QString, QString>();
}

std::optional<QMap<QString, VCard>> CardDavClient::contacts()
{
    if (send("OPTIONS", QString()).status != 200)
        return std::nullopt;
    QMap<QString, VCard> cards;
    const QMap<QString, QString> texts = report(QStringLiteral("address-data"));
    for (auto it = texts.cbegin(); it != texts.cend(); ++it)
        cards.insert(it.key(), VCard(it.value()));
    return cards;
}

QMap<QString, QString> CardDavClient::marks()
{
    return report(QStringLiteral("getetag"));
}

bool CardDavClient::put(const QString &address, const VCard &card)
{
    const int status = send("PUT", address, card.toBytes(), "text/vcard").status;
    return status >= 200 && status < 300;
}

bool CardDavClient::remove(const QString &address)
{
    const int status = send("DELETE", address).status;
    return status >= 200 && status < 300;
}

bool CardDavClient::leaveThisSecond()
{
    // Its answers tell the time; a change of the text is a new second.
    const QByteArray start = send("OPTIONS", QString()).date;
    QByteArray latest = start;
    int seconds = 0;
    QElapsedTimer timer;
    timer.start();
    while (!start.isEmpty() && seconds < 2 && timer.elapsed() < clockTimeout) {
        const QByteArray now = send("OPTIONS", QString()).date;
        if (now != latest)
            ++seconds;
        latest = now;
    }
    return seconds == 2;
}
