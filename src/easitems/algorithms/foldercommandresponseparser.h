// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmltokens.h"

/**
 * What the replies of FolderCreate, FolderDelete and FolderUpdate share: a status and the hierarchy's new key
 * below a root of their own. An empty reply is ready at once, with status 0 and no key.
 */
class FolderCommandResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    bool ready() const override;
    void parse(const QByteArray &data) override;

    int status() const { return mStatus; }
    /** Empty if the reply holds none. */
    QString syncKey() const { return mSyncKey; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

protected:
    FolderCommandResponseParser(Wbxml::Token root, QObject *parent);

    QString mServerId;

private:
    enum class Position { BeforeRoot, InRoot, Done };

    const Wbxml::Token mRoot;
    Position mPosition = Position::BeforeRoot;
    int mStatus = 0;
    QString mSyncKey;
};
