// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/bodyshape.h"

#include "simulator/plaintext.h"
#include "simulator/protocolversion.h"

#include <QTextCodec>

#include <algorithm>

namespace Simulator {
namespace {

enum BodyType { Plain = 1, Html = 2, Mime = 4 };

struct Bodies
{
    EmailBodies texts;
    const EmailContent *content = nullptr; ///< of a message

    int nativeType() const { return texts.html.isEmpty() ? Plain : Html; }
    QByteArray bytes(int type) const
    {
        if (type == Mime)
            return content ? content->message() : QByteArray();
        if (type == Plain)
            return texts.plain.toUtf8();
        return (texts.html.isEmpty() ? PlainText::toHtml(texts.plain) : texts.html).toUtf8();
    }
};

/** Cuts without leaving half a character behind. */
QByteArray cut(const QByteArray &bytes, qint64 limit)
{
    int size = int(std::min<qint64>(limit, bytes.size()));
    while (size > 0 && size < bytes.size() && (quint8(bytes.at(size)) & 0xC0) == 0x80)
        --size;
    return bytes.left(size);
}

bool isText(const QByteArray &bytes)
{
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 && !bytes.contains('\0');
}

bool allowsMime(const EmailContent &content, const SyncOptions &options)
{
    return options.mimeSupport == 2 || (options.mimeSupport == 1 && content.isSmime());
}

qint64 limitOf(const BodyPreference &preference, const SyncOptions &options)
{
    const qint64 mimeLimit = preference.type == Mime ? options.mimeLimit() : -1;
    if (mimeLimit < 0 || preference.truncationSize < 0)
        return std::max(mimeLimit, preference.truncationSize);
    return std::min(mimeLimit, preference.truncationSize);
}

/** The preference that the server follows: MIME where it may, else the message's own type, else any other. */
const BodyPreference *choose(
    const QVector<BodyPreference> &wanted, const Bodies &bodies, const SyncOptions &options)
{
    const BodyPreference *best = nullptr;
    int bestRank = 0;
    for (const BodyPreference &preference : wanted) {
        int rank = 1;
        if (preference.type == Mime)
            rank = bodies.content && allowsMime(*bodies.content, options) ? 3 : 0;
        else if (preference.type == bodies.nativeType())
            rank = 2;
        else if (preference.type != Plain && preference.type != Html)
            rank = 0;
        const bool tooLarge = preference.allOrNone && preference.truncationSize >= 0
            && bodies.bytes(preference.type).size() > preference.truncationSize;
        if (rank > bestRank && !tooLarge) {
            best = &preference;
            bestRank = rank;
        }
    }
    return best;
}

void appendData(WbxmlNode &body, const QByteArray &data, const ItemShape &shape)
{
    if (shape.parts && body.tag() == QLatin1String("Body")) {
        shape.parts->append(data);
        body.append(QStringLiteral("ItemOperations:Part"), shape.parts->size());
    } else if (isText(data)) {
        body.append(QStringLiteral("Data"), QString::fromUtf8(data));
    } else {
        body.append(WbxmlNode::opaque(QStringLiteral("Data"), data));
    }
}

WbxmlNode bodyElement(
    const QString &name, const Bodies &bodies, const BodyPreference *preference, const ItemShape &shape)
{
    WbxmlNode body(name);
    const int type = preference ? preference->type : bodies.nativeType();
    const QByteArray whole = bodies.bytes(type);
    const qint64 limit = preference ? limitOf(*preference, shape.options) : -1;
    const bool truncated = limit >= 0 && whole.size() > limit;
    if (name.endsWith(QLatin1String("BodyPart")))
        body.append(QStringLiteral("Status"), 1);
    body.append(QStringLiteral("Type"), type);
    body.append(QStringLiteral("EstimatedDataSize"), whole.size());
    if (truncated)
        body.append(QStringLiteral("Truncated"), 1);
    const QByteArray data = truncated ? cut(whole, limit) : whole;
    const bool multipart = shape.parts && name.endsWith(QLatin1String("Body"));
    if (!data.isEmpty() && !multipart)
        appendData(body, data, shape);
    if (preference && preference->preview > 0 && shape.version >= Version140)
        body.append(QStringLiteral("Preview"), PlainText::preview(bodies.texts.plain, preference->preview));
    if (!data.isEmpty() && multipart)
        appendData(body, data, shape);
    return body;
}

/** What stands for a body that no preference fits: its type and size. */
WbxmlNode bodyWithoutData(const Bodies &bodies, int type)
{
    WbxmlNode body(QStringLiteral("AirSyncBase:Body"));
    body.append(QStringLiteral("Type"), type);
    body.append(QStringLiteral("EstimatedDataSize"), bodies.bytes(type).size());
    body.append(QStringLiteral("Truncated"), 1);
    return body;
}

QVector<WbxmlNode> elementsOf(const Bodies &bodies, const ItemShape &shape)
{
    const SyncOptions &options = shape.options;
    const QString bodyName = QStringLiteral("AirSyncBase:Body");
    QVector<WbxmlNode> result;
    const BodyPreference *preference = choose(options.bodies, bodies, options);
    if (preference || options.bodies.isEmpty())
        result.append(bodyElement(bodyName, bodies, preference, shape));
    else
        result.append(bodyWithoutData(bodies, bodies.nativeType()));
    const BodyPreference *part = bodies.content ? choose(options.bodyParts, bodies, options) : nullptr;
    if (part && shape.version >= Version141)
        result.append(bodyElement(QStringLiteral("AirSyncBase:BodyPart"), bodies, part, shape));
    result.append(
        WbxmlNode(QStringLiteral("AirSyncBase:NativeBodyType"), QString::number(bodies.nativeType())));
    return result;
}

} // namespace

QVector<WbxmlNode> BodyShape::elements(const EmailContent &content, const ItemShape &shape)
{
    return elementsOf({ content.bodies(), &content }, shape);
}

QVector<WbxmlNode> BodyShape::elements(const EmailBodies &texts, const ItemShape &shape)
{
    return elementsOf({ texts, nullptr }, shape);
}

std::optional<QString> BodyShape::uploadedText(const WbxmlNode &body)
{
    const WbxmlNode data = body.at(QStringLiteral("Data"));
    if (data.isNull())
        return std::nullopt;
    const QString text = QString::fromUtf8(data.bytes());
    return body.text(QStringLiteral("Type")).toInt() == Html ? PlainText::fromHtml(text) : text;
}

} // namespace Simulator
