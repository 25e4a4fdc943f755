// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/mentions.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVector>

/**
 * Turns the events of a document into calls with plain numbers and checks the nesting.
 *
 * Subclasses call the base's onStartElement() and onEndElement() first. A failed document shows in ready()
 * alone; what was delivered before the failure is to be thrown away by the caller.
 */
class ParserBase : public QObject
{
    Q_OBJECT

public:
    struct TokenId
    {
        quint8 codePage;
        quint8 token;
    };

    explicit ParserBase(QObject *parent = nullptr);
    ~ParserBase() override;

    /** True once a whole document was read, or there was nothing to read. */
    virtual bool ready() const;

    /** An empty document counts as read. */
    virtual void parse(const QByteArray &data);

    virtual void onStartDocument();
    virtual void onEndDocument();
    virtual void onStartElement(uint codePage, uint token);
    virtual void onEndElement(uint codePage, uint token);
    virtual void onCharacters(const QString &text, const QByteArray &raw);

    /** The text of the innermost open element; raw holds its bytes as they came. */
    virtual void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw);
    virtual void onProcessingInstruction(const QString &target, const QString &data);

    /** Both write the value only if the text is a number. */
    static bool stringToInt(const QString &text, int &value, int base = 10);
    static bool stringToUint(const QString &text, uint &value, int base = 10);
    /** A status of a body: 0 to 999 as the server sent it. Anything else, logged, is an internal error: the
     * numbers beyond are the engine's own and those of the transport. */
    static int toStatus(const QString &text, const char *failure = "Cannot convert to int: ");

protected:
    /** Whether this is the first time in the document that something (a literal) is to be said of a tag. */
    bool isFirst(const char *what, uint codePage, uint token);
    /** Stops a document that passes the bounds of its kind: ready() stays false. */
    void refuse(const char *reason);

    enum State : qint32 { NotStarted = 0, TopLevel = 1, InElement = 2, Failed = 3, Finished = 4 };

    State mState = NotStarted;
    QVector<TokenId> mElementStack;

private:
    Mentions mMentions;
    bool mRefused = false;
};

Q_DECLARE_TYPEINFO(ParserBase::TokenId, Q_PRIMITIVE_TYPE);
