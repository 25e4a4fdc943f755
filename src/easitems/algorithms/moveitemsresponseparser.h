// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/moveitemsresponse.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QList>

/** Reads the reply of a MoveItems. It is ready only behind the end of the root: an empty reply is no answer.
 */
class MoveItemsResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit MoveItemsResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** Of the whole command; success unless the reply says otherwise. */
    int status() const { return mStatus; }
    QList<MoveItemsResponse> responses() const { return mResponses; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum State { BeforeRoot, InMoveItems, InResponse, Done };

    void enter(State from, State to, uint codePage, uint token);
    void statusContent(const QString &text);
    bool inResponse() const;

    State mState = BeforeRoot;
    int mStatus = 0;
    MoveItemsResponse mResponse;
    QList<MoveItemsResponse> mResponses;
};
