// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/emailshape.h"

#include "simulator/bodyshape.h"
#include "simulator/datetext.h"
#include "simulator/filereference.h"
#include "simulator/meetingshape.h"
#include "simulator/protocolversion.h"

#include <QCryptographicHash>

namespace Simulator {
namespace {

/** One field: its name, the versions that have it, and its nodes. */
struct Row
{
    const char *name;
    int firstVersion;
    int lastVersion;
    QVector<WbxmlNode> (*nodes)(const QString &name, const Email &email, const ItemShape &shape);
};

QVector<WbxmlNode> ifFilled(const QString &name, const QString &text)
{
    return text.isEmpty() ? QVector<WbxmlNode>() : QVector<WbxmlNode> { WbxmlNode(name, text) };
}

template <QString EmailHeaders::*field>
QVector<WbxmlNode> header(const QString &name, const Email &email, const ItemShape &)
{
    return ifFilled(name, email.content().headers().*field);
}

QVector<WbxmlNode> dateReceived(const QString &name, const Email &email, const ItemShape &)
{
    return { WbxmlNode(name, DateText::withDashes(email.date())) };
}

QVector<WbxmlNode> importance(const QString &name, const Email &email, const ItemShape &)
{
    return { WbxmlNode(name, QString::number(email.content().headers().importance)) };
}

QVector<WbxmlNode> read(const QString &name, const Email &email, const ItemShape &)
{
    return { WbxmlNode(name, QString::number(email.isRead())) };
}

QVector<WbxmlNode> attachments(const QString &name, const Email &email, const ItemShape &shape)
{
    const QVector<AttachmentInfo> &infos = email.content().attachmentInfos();
    WbxmlNode list(name);
    for (int i = 0; i < infos.size(); ++i) {
        const AttachmentInfo &info = infos.at(i);
        WbxmlNode &node = list.append(QStringLiteral("Attachment"));
        node.append(QStringLiteral("DisplayName"), info.name);
        node.append(QStringLiteral("FileReference"), FileReference::text(shape.serverId, i));
        node.append(QStringLiteral("Method"), info.isMessage ? 5 : 1);
        node.append(QStringLiteral("EstimatedDataSize"), info.size);
        if (!info.contentId.isEmpty())
            node.append(QStringLiteral("ContentId"), info.contentId);
        if (!info.contentLocation.isEmpty())
            node.append(QStringLiteral("ContentLocation"), info.contentLocation);
        if (info.isInline)
            node.append(QStringLiteral("IsInline"), 1);
    }
    return infos.isEmpty() ? QVector<WbxmlNode>() : QVector<WbxmlNode> { list };
}

QVector<WbxmlNode> bodies(const QString &, const Email &email, const ItemShape &shape)
{
    return BodyShape::elements(email.content(), shape);
}

QVector<WbxmlNode> meetingRequest(const QString &, const Email &email, const ItemShape &shape)
{
    const QByteArray calendar = email.content().meetingRequest();
    return calendar.isEmpty() ? QVector<WbxmlNode>()
                              : QVector<WbxmlNode> { MeetingShape::element(calendar, shape) };
}

QVector<WbxmlNode> codePage(const QString &name, const Email &, const ItemShape &)
{
    return { WbxmlNode(name, QStringLiteral("65001")) };
}

QVector<WbxmlNode> flag(const QString &, const Email &email, const ItemShape &)
{
    return { email.flag() };
}

QVector<WbxmlNode> categories(const QString &name, const Email &email, const ItemShape &)
{
    WbxmlNode node(name);
    for (const QString &category : email.categories())
        node.append(QStringLiteral("Category"), category);
    return { node };
}

QVector<WbxmlNode> contentClass(const QString &name, const Email &email, const ItemShape &)
{
    const bool meeting = !email.content().meetingRequest().isEmpty();
    return { WbxmlNode(name,
        meeting ? QStringLiteral("urn:content-classes:calendarmessage")
                : QStringLiteral("urn:content-classes:message")) };
}

QByteArray conversation(const Email &email)
{
    return QCryptographicHash::hash(email.content().headers().threadTopic.toUtf8(), QCryptographicHash::Md5);
}

QVector<WbxmlNode> conversationId(const QString &name, const Email &email, const ItemShape &)
{
    return { WbxmlNode::opaque(name, conversation(email)) };
}

QVector<WbxmlNode> conversationIndex(const QString &name, const Email &email, const ItemShape &)
{
    return { WbxmlNode::opaque(name, DateText::fileTime(email.date()).left(5)) };
}

QVector<WbxmlNode> isDraft(const QString &name, const Email &, const ItemShape &shape)
{
    return shape.isDraft ? QVector<WbxmlNode> { WbxmlNode(name, QStringLiteral("1")) } : QVector<WbxmlNode>();
}

QVector<WbxmlNode> draftBcc(const QString &name, const Email &email, const ItemShape &shape)
{
    return shape.isDraft ? header<&EmailHeaders::bcc>(name, email, shape) : QVector<WbxmlNode>();
}

const Row rows[] = {
    { "Email:To", Version120, Version161, header<&EmailHeaders::to> },
    { "Email:Cc", Version120, Version161, header<&EmailHeaders::cc> },
    { "Email:From", Version120, Version161, header<&EmailHeaders::from> },
    { "Email:Subject", Version120, Version161, header<&EmailHeaders::subject> },
    { "Email:ReplyTo", Version120, Version161, header<&EmailHeaders::replyTo> },
    { "Email:DateReceived", Version120, Version161, dateReceived },
    { "Email:DisplayTo", Version120, Version161, header<&EmailHeaders::displayTo> },
    { "Email:ThreadTopic", Version120, Version161, header<&EmailHeaders::threadTopic> },
    { "Email:Importance", Version120, Version161, importance },
    { "Email:Read", Version120, Version161, read },
    { "AirSyncBase:Attachments", Version120, Version161, attachments },
    { "AirSyncBase:Body", Version120, Version161, bodies },
    { "Email:MessageClass", Version120, Version161, header<&EmailHeaders::messageClass> },
    { "Email:MeetingRequest", Version120, Version161, meetingRequest },
    { "Email:InternetCPID", Version120, Version161, codePage },
    { "Email:Flag", Version120, Version161, flag },
    { "Email:ContentClass", Version120, Version161, contentClass },
    { "Email2:ConversationId", Version140, Version161, conversationId },
    { "Email2:ConversationIndex", Version140, Version161, conversationIndex },
    { "Email:Categories", Version140, Version161, categories },
    { "Email2:Sender", Version140, Version161, header<&EmailHeaders::sender> },
    { "Email2:IsDraft", Version160, Version161, isDraft },
    { "Email2:Bcc", Version160, Version161, draftBcc },
};

bool exists(const Row &row, int version)
{
    return version >= row.firstVersion && version <= row.lastVersion;
}

} // namespace

QVector<WbxmlNode> EmailShape::all(const Email &email, const ItemShape &shape)
{
    QVector<WbxmlNode> result;
    for (const Row &row : rows) {
        if (exists(row, shape.version))
            result += row.nodes(QLatin1String(row.name), email, shape);
    }
    return result;
}

QVector<WbxmlNode> EmailShape::changed(const Email &email, const ItemState &known, const ItemShape &shape)
{
    const ItemState now = email.state();
    if (known.value(QStringLiteral("Content")) != now.value(QStringLiteral("Content")))
        return all(email, shape);
    QVector<WbxmlNode> result;
    for (const Row &row : rows) {
        const QString tag = QString::fromLatin1(row.name).section(QLatin1Char(':'), 1);
        if (exists(row, shape.version) && now.contains(tag) && known.value(tag) != now.value(tag))
            result += row.nodes(QLatin1String(row.name), email, shape);
    }
    return result;
}

} // namespace Simulator
