// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/wbxmlcodec.h"

#include "simulator/wbxmltokens.h"

namespace Simulator {
namespace {

enum Global : quint8 {
    SwitchPage = 0x00,
    End = 0x01,
    InlineString = 0x03,
    TableString = 0x83,
    Opaque = 0xC3,
};
const quint8 hasContent = 0x40;
const quint8 hasAttributes = 0x80;
const quint8 tokenMask = 0x3F;
const int utf8Charset = 106;
const int deepest = 64;

class Writer
{
public:
    QByteArray document(const WbxmlNode &root)
    {
        mBytes =
            QByteArray::fromHex("03016a00"); // WBXML 1.3, unknown public identifier, UTF-8, no string table
        return element(root) ? mBytes : QByteArray();
    }

private:
    bool element(const WbxmlNode &node)
    {
        const auto token = WbxmlTokens::find(node.name());
        if (!token)
            return false;
        if (token->page != mPage) {
            mPage = token->page;
            byte(SwitchPage);
            byte(mPage);
        }
        const bool filled = !node.children().isEmpty() || !node.bytes().isEmpty();
        byte(filled ? token->token | hasContent : token->token);
        if (!filled)
            return true;
        content(node);
        for (const WbxmlNode &child : node.children()) {
            if (!element(child))
                return false;
        }
        byte(End);
        return true;
    }

    void content(const WbxmlNode &node)
    {
        if (node.isOpaque()) {
            byte(Opaque);
            number(quint32(node.opaqueBytes().size()));
            mBytes += node.opaqueBytes();
        } else if (!node.text().isEmpty()) {
            byte(InlineString);
            mBytes += node.text().remove(QChar(0)).toUtf8();
            byte(0);
        }
    }

    void byte(int value) { mBytes += char(value); }

    void number(quint32 value)
    {
        QByteArray digits(1, char(value & 0x7F));
        while (value >>= 7)
            digits.prepend(char(0x80 | (value & 0x7F)));
        mBytes += digits;
    }

    QByteArray mBytes;
    quint8 mPage = 0;
};

class Reader
{
public:
    explicit Reader(const QByteArray &bytes)
        : mBytes(bytes)
    {
    }

    WbxmlCodec::Decoded document()
    {
        WbxmlNode root;
        if (header())
            root = element(next(), 1);
        if (mError.isEmpty() && mPosition != mBytes.size())
            fail(QStringLiteral("bytes after the end of the document"));
        return { mError.isEmpty() ? root : WbxmlNode(), mError };
    }

private:
    bool header()
    {
        if (next() != 0x03)
            fail(QStringLiteral("not WBXML 1.3"));
        number();
        if (number() != quint32(utf8Charset))
            fail(QStringLiteral("not UTF-8"));
        mTable = take(number());
        return mError.isEmpty();
    }

    WbxmlNode element(quint8 first, int depth)
    {
        while (first == SwitchPage && mError.isEmpty()) {
            mPage = next();
            first = next();
        }
        const QString name = WbxmlTokens::name(mPage, first & tokenMask);
        if (name.isEmpty())
            fail(QStringLiteral("unknown token %1 on page %2").arg(first & tokenMask).arg(mPage));
        if (first & hasAttributes)
            fail(QStringLiteral("%1 has attributes").arg(name));
        if (depth > deepest)
            fail(QStringLiteral("nested too deeply"));
        WbxmlNode node(name);
        if (mError.isEmpty() && (first & hasContent))
            content(node, depth);
        return node;
    }

    void content(WbxmlNode &node, int depth)
    {
        QByteArray text;
        bool opaque = false;
        for (quint8 token = next(); mError.isEmpty() && token != End; token = next()) {
            if (token == InlineString) {
                text += string(mBytes, mPosition);
            } else if (token == TableString) {
                int offset = int(number());
                text += string(mTable, offset);
            } else if (token == Opaque) {
                opaque = true;
                text += take(number());
            } else {
                node.append(element(token, depth + 1));
            }
        }
        if (!text.isEmpty() || opaque) {
            const QVector<WbxmlNode> children = node.children();
            node = opaque ? WbxmlNode::opaque(node.name(), text)
                          : WbxmlNode(node.name(), QString::fromUtf8(text));
            node.children() = children;
        }
    }

    QByteArray string(const QByteArray &from, int &position)
    {
        const int end = position >= 0 && position <= from.size() ? from.indexOf('\0', position) : -1;
        if (end < 0) {
            fail(QStringLiteral("a string without end"));
            return QByteArray();
        }
        const QByteArray found = from.mid(position, end - position);
        position = end + 1;
        return found;
    }

    quint8 next()
    {
        if (mPosition < mBytes.size())
            return quint8(mBytes.at(mPosition++));
        fail(QStringLiteral("the document stops early"));
        return End;
    }

    quint32 number()
    {
        quint32 value = 0;
        for (int digits = 0; digits < 5; ++digits) {
            const quint8 digit = next();
            value = value << 7 | (digit & 0x7F);
            if (!(digit & 0x80))
                return value;
        }
        fail(QStringLiteral("a number of more than 32 bits"));
        return 0;
    }

    QByteArray take(quint32 length)
    {
        if (length > quint32(mBytes.size() - mPosition)) {
            fail(QStringLiteral("a length beyond the end"));
            return QByteArray();
        }
        mPosition += int(length);
        return mBytes.mid(mPosition - int(length), int(length));
    }

    void fail(const QString &reason)
    {
        if (mError.isEmpty())
            mError = QStringLiteral("%1 at byte %2").arg(reason).arg(mPosition);
    }

    const QByteArray mBytes;
    QByteArray mTable;
    QString mError;
    int mPosition = 0;
    quint8 mPage = 0;
};

} // namespace

QByteArray WbxmlCodec::encode(const WbxmlNode &root)
{
    return Writer().document(root);
}

WbxmlCodec::Decoded WbxmlCodec::decode(const QByteArray &bytes)
{
    return Reader(bytes).document();
}

} // namespace Simulator
