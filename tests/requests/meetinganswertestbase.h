// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/easdatabase.h"
#include "easitems/eascalendaritem.h"
#include "easitems/easemailitem.h"
#include "requests/meetingresponserequest.h"
#include "support/fakeconfigurations.h"
#include "support/requestbed.h"
#include "support/wbxmldocument.h"

#include <QtTest>

#include <memory>

/** What answers to invitations are about in their tests, and what servers say of them. */
namespace MeetingAnswers {

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

inline constexpr EasAccountId Account = RequestBed::Account;
/** An invitation, the event of a calendar, and two messages for organizers. */
inline constexpr quint64 Invitation = 21;
inline const QString Event = QStringLiteral("event-uid");
inline constexpr quint64 Reply = 31;
inline constexpr quint64 OtherReply = 32;
/** 2024-05-01T10:00:00Z */
inline constexpr qint64 Instance = 1714557600;

inline constexpr auto Accepted = EasItemsCommon::UserResponseAccepted;
inline constexpr auto Declined = EasItemsCommon::UserResponseDeclined;

inline const QString AboutMail = QStringLiteral("CollectionId=5,RequestId=5:1");
inline const QString AboutEvent = QStringLiteral("CollectionId=8,RequestId=8:1");

inline QString asked(const QString &requests)
{
    return "MeetingResponse(" + requests + ")";
}
inline QString request(int response, const QString &rest)
{
    return QStringLiteral("Request(UserResponse=%1,%2)").arg(QString::number(response), rest);
}

inline QByteArray results(const QList<int> &statuses)
{
    QVector<WbxmlNode> nodes;
    for (const int status : statuses)
        nodes.append(node(MeetingResponse::Result,
            { node(MeetingResponse::RequestId, "5:1"),
                node(MeetingResponse::Status, QString::number(status)) }));
    return document(node(MeetingResponse::MeetingResponse, nodes));
}

inline QByteArray wholeStatus(int status)
{
    return document(
        node(MeetingResponse::MeetingResponse, { node(MeetingResponse::Status, QString::number(status)) }));
}

inline QByteArray sendStatus(int status)
{
    return document(node(ComposeMail::SendMail, { node(ComposeMail::Status, QString::number(status)) }));
}

inline EasEmailItem outgoing(const QByteArray &mime)
{
    EasBodyContainer body;
    body.setMime(mime);
    EasEmailItem item;
    item.setBody(body);
    return item;
}

/** A request for answers on a bed of its own, with an invitation and an event that the server knows. */
class MeetingAnswerTestBase : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<RequestBed> mBed;
    std::unique_ptr<MeetingResponseRequest> mRequest;

    void httpAnswer(int status)
    {
        ScriptedAnswer answer;
        answer.status = status;
        mBed->server.answer(answer);
    }
    void emptyAnswer() { mBed->answer({}); }
    int run() { return RequestBed::run(*mRequest); }

    static void addRows()
    {
        EasEmailItem mail;
        mail.setServerId(QStringLiteral("5:1"));
        mail.setCollectionId(QStringLiteral("5"));
        mail.setLocalId(QString::number(Invitation));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { mail }));
        EasCalendarItem event;
        event.setServerId(QStringLiteral("8:1"));
        event.setCollectionId(QStringLiteral("8"));
        event.setLocalId(Event);
        QVERIFY(EasDatabase::instance()->addCalendarItems(Account, { event }));
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(
            QStringList { QStringLiteral("MeetingResponse"), QStringLiteral("SendMail") });
        mBed->account->email.reset(new FakeEmailConfiguration(Account));
        mBed->mail->serverUids.insert(Invitation, QStringLiteral("5:1"));
        mBed->mail->deletesEmails = true;
        mBed->mail->outgoing[QString::number(Reply)].whole = outgoing("Subject: Accepted\r\n\r\nYes\r\n");
        mBed->mail->outgoing[QString::number(OtherReply)].whole = outgoing("Subject: No\r\n\r\nNo\r\n");
        addRows();
        mRequest = std::make_unique<MeetingResponseRequest>(Account, RequestBed::Id, mBed->manager);
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup()
    {
        mRequest.reset();
        QCOMPARE(RequestBed::end(mBed), QString());
    }
};

} // namespace MeetingAnswers
