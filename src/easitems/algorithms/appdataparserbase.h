// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/mentions.h"

#include <QByteArray>
#include <QObject>
#include <QString>

/**
 * Reads the fields of one item of a reply, event by event; the parser of the reply hands the events on and
 * fetches the item at its end. One subclass for each class of items.
 */
class AppDataParserBase : public QObject
{
    Q_OBJECT

public:
    explicit AppDataParserBase(QObject *parent = nullptr);
    ~AppDataParserBase() override;

    /** A reply begins: what is wrong with its elements is logged once for each kind. */
    void beginReply() { mMentions.clear(); }

    virtual void onStartElement(uint page, uint token);
    virtual void onEndElement(uint page, uint token);
    virtual void onContent(uint page, uint token, const QString &text, const QByteArray &raw);

    /** Both write the value only if the text is a number. */
    static bool stringToInt(const QString &text, int &value, int base = 10);
    static bool stringToUint(const QString &text, uint &value, int base = 10);

protected:
    void logUnhandledElement(uint page, uint token);
    void logUnhandledField(const QString &text, uint page, uint token);

    Mentions mMentions;
};
